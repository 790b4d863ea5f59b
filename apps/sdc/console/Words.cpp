#include "apps/sdc/console/Words.h"

namespace sdc {

namespace {

constexpr std::string_view blanks = " \t\r\v\f\n";
constexpr std::string_view quotes = "'\"";
constexpr char backslash = '\\';
constexpr char remark = '#';

bool isOneOf(std::string_view characters, char character)
{
    return characters.find(character) != std::string_view::npos;
}

/// Takes a line apart from its beginning.
class Splitter {
public:
    explicit Splitter(std::string_view line)
        : m_line(line)
    {
    }

    SplitLine split()
    {
        for (; m_at < m_line.size() && !m_split.hasRemark; ++m_at) {
            if (m_quote != '\0') {
                readQuoted(m_line[m_at]);
            } else {
                readPlain(m_line[m_at]);
            }
        }
        m_split.endsInQuotes = m_quote != '\0';
        return m_split;
    }

private:
    void readPlain(char character)
    {
        if (isOneOf(blanks, character)) {
            m_split.endsInWord = false;
        } else if (character == remark && !m_split.endsInWord) {
            m_split.hasRemark = true;
        } else {
            beginWord();
            m_quote = isOneOf(quotes, character) ? character : '\0';
            if (m_quote == '\0') {
                append(character);
            }
        }
    }

    void readQuoted(char character)
    {
        if (character == m_quote) {
            m_quote = '\0';
        } else {
            append(character);
        }
    }

    void beginWord()
    {
        if (!m_split.endsInWord) {
            m_split.words.emplace_back();
            m_split.lastBegins = m_at;
            m_split.endsInWord = true;
        }
    }

    /// A backslash stands for the character behind it; not between single quotes, and not at the end of the line.
    void append(char character)
    {
        const bool isEscape = character == backslash && m_quote != '\'' && m_at + 1 < m_line.size();
        m_at += isEscape ? 1 : 0;
        m_split.words.back() += m_line[m_at];
    }

    std::string_view m_line;
    std::size_t m_at = 0;
    char m_quote = '\0'; ///< that has to be closed
    SplitLine m_split;
};

} // namespace

SplitLine splitLine(std::string_view line)
{
    return Splitter(line).split();
}

Words wordsOf(std::string_view line)
{
    SplitLine split = splitLine(line);
    if (split.endsInQuotes) {
        throw InvalidLine("the quotes are not closed; expected a second one, or \\ before one that is meant itself");
    }
    return split.words;
}

std::string asWord(std::string_view text)
{
    std::string word;
    for (const char character : text) {
        const bool isSpecial = isOneOf(blanks, character) || isOneOf(quotes, character) || character == backslash
            || (character == remark && word.empty());
        word += isSpecial ? std::string{backslash, character} : std::string{character};
    }
    return word;
}

} // namespace sdc
