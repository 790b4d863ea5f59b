#pragma once

#include <locale.h> // NOLINT(modernize-deprecated-headers): the locale of a thread is no part of C++

#include <cwchar>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace sdc {

/// The characters in which the user types, as the environment's locale has them; where none is set, UTF-8, in which the
/// program writes.
class Characters {
public:
    Characters();

    /// In force for the calling thread for as long as it lives: nothing else that the program does depends on a locale.
    class InForce {
    public:
        explicit InForce(const Characters& characters)
            : m_before(uselocale(characters.m_locale.get()))
        {
        }
        ~InForce() { uselocale(m_before); }
        InForce(const InForce&) = delete;
        InForce& operator=(const InForce&) = delete;

    private:
        locale_t m_before;
    };

private:
    struct Freed {
        void operator()(locale_t locale) const { freelocale(locale); }
    };
    std::unique_ptr<std::remove_pointer_t<locale_t>, Freed> m_locale;
};

// In the characters in force. What is none of them is left out.

std::string narrow(std::wstring_view text);
std::wstring wide(std::string_view bytes);

/// Whether a byte is the last of a character. One that does not go on with what came before it may begin the next.
/// @param state  between the bytes of a character; at first initial
bool completes(wchar_t& character, char byte, std::mbstate_t& state);

} // namespace sdc
