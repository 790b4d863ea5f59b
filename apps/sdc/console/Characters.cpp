#include "apps/sdc/console/Characters.h"

#include <langinfo.h>

#include <array>
#include <cstddef>
#include <cwchar>

namespace sdc {

namespace {

constexpr auto invalid = static_cast<std::size_t>(-1);

} // namespace

Characters::Characters()
    : m_locale(newlocale(LC_CTYPE_MASK, "", nullptr))
{
    constexpr std::string_view ascii = "ANSI_X3.4-1968"; // of the locale C
    if (!m_locale || nl_langinfo_l(CODESET, m_locale.get()) == ascii) {
        m_locale.reset(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr));
    }
    if (!m_locale) { // a system without it
        m_locale.reset(newlocale(LC_CTYPE_MASK, "C", nullptr));
    }
}

std::string narrow(std::wstring_view text)
{
    std::string bytes;
    for (const wchar_t character : text) {
        std::array<char, 16> buffer{};
        std::mbstate_t state{};
        const std::size_t count = std::wcrtomb(buffer.data(), character, &state);
        bytes.append(buffer.data(), count == invalid ? 0 : count);
    }
    return bytes;
}

std::wstring wide(std::string_view bytes)
{
    std::wstring text;
    std::mbstate_t state{};
    for (const char byte : bytes) {
        wchar_t character = 0;
        if (completes(character, byte, state) && character != 0) {
            text += character;
        }
    }
    return text;
}

bool completes(wchar_t& character, char byte, std::mbstate_t& state)
{
    std::size_t used = std::mbrtowc(&character, &byte, 1, &state);
    if (used == invalid) {
        state = {};
        used = std::mbrtowc(&character, &byte, 1, &state);
    }
    state = used == invalid ? std::mbstate_t{} : state;
    return used <= 1; // 0 for NUL
}

} // namespace sdc
