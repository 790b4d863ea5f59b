#pragma once

#include <locale>
#include <string>

namespace tests {

/// Makes the global C++ locale group digits, "1.234.567", for as long as it lives.
class GroupingLocale {
public:
    GroupingLocale()
        : m_before(std::locale::global(std::locale(std::locale::classic(), new Grouping)))
    {
    }
    ~GroupingLocale() { std::locale::global(m_before); }
    GroupingLocale(const GroupingLocale&) = delete;
    GroupingLocale& operator=(const GroupingLocale&) = delete;

private:
    class Grouping : public std::numpunct<char> {
    protected:
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale m_before;
};

} // namespace tests
