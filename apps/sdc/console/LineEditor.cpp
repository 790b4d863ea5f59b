#include "apps/sdc/console/LineEditor.h"

#include "apps/sdc/console/Characters.h"
#include "apps/sdc/console/Words.h"
#include "apps/sdc/tty/Screen.h"
#include "support/Text.h"

#include <fmt/format.h>
#include <histedit.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace sdc {

namespace {

template <auto end>
struct EndedBy {
    template <typename Thing>
    void operator()(Thing* thing) const
    {
        end(thing);
    }
};

/// What all words begin with.
std::string commonBeginning(const Words& words)
{
    std::string common = words.front();
    for (const std::string& word : words) {
        const auto differs = std::ranges::mismatch(common, word).in1;
        common.erase(differs, common.end());
    }
    return common;
}

const std::string clearBelow = "\033[J"; ///< from the cursor on

class LineEditor : public LineSource {
public:
    LineEditor(Signals& signals, LineHistory& history, Completer complete, std::FILE* shown)
        : m_signals(signals)
        , m_kept(history)
        , m_complete(std::move(complete))
        , m_shown(shown)
        , m_history(history_winit())
        , m_editor(el_init("sdc", stdin, shown, stderr))
    {
        if (!m_editor || !m_history) {
            throw std::runtime_error("cannot edit lines on this terminal");
        }
        const Characters::InForce characters(m_characters);
        HistEventW event{};
        history_w(m_history.get(), &event, H_SETSIZE, static_cast<int>(LineHistory::mostLines));
        for (const std::string& line : m_kept.lines()) {
            history_w(m_history.get(), &event, H_ENTER, wide(line).c_str());
        }
        setUp();
    }

    bool isTyped() const override { return true; }
    bool isInterrupted() override { return m_signals.isInterrupted(); }
    bool isEndWanted() const override { return m_signals.isEndWanted(); }

    std::optional<std::string> next() override
    {
        const Characters::InForce characters(m_characters);
        static_cast<void>(m_signals.isInterrupted()); // what came before the prompt is not for it
        for (m_isCleared = true; m_isCleared;) {
            m_isCleared = false;
            prepareTerminal(true); // before the prompt: what is typed at once is a key, too
            int length = 0;
            const wchar_t* const text = el_wgets(m_editor.get(), &length);
            if (text != nullptr && !m_isCleared) {
                return keep(std::wstring_view(text, static_cast<std::size_t>(length)));
            }
        }
        show("\r\n");
        return std::nullopt;
    }

private:
    /// What the terminal would make signals of comes as keys, so that no line is left half shown.
    void setUp()
    {
        EditLine* const editor = m_editor.get();
        el_set(editor, EL_CLIENTDATA, this);
        el_set(editor, EL_EDITOR, "emacs");
        el_set(editor, EL_PROMPT, &LineEditor::promptOf);
        el_set(editor, EL_GETCFN, &LineEditor::onRead);
        el_wset(editor, EL_HIST, history_w, m_history.get());
        el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
        el_wset(editor, EL_ADDFN, L"sdc-complete", L"Complete the word", &LineEditor::onComplete);
        el_wset(editor, EL_ADDFN, L"sdc-clear", L"Clear the line", &LineEditor::onClear);
        el_wset(editor, EL_ADDFN, L"sdc-suspend", L"Stop the program until the shell lets it go on", &LineEditor::onSuspend);
        el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        el_source(editor, nullptr);
        el_set(editor, EL_BIND, "^I", "sdc-complete", nullptr);
        el_set(editor, EL_BIND, "^C", "sdc-clear", nullptr);
        el_set(editor, EL_BIND, "^Z", "sdc-suspend", nullptr);
    }

    static LineEditor& self(EditLine* editor)
    {
        void* data = nullptr;
        el_get(editor, EL_CLIENTDATA, &data);
        return *static_cast<LineEditor*>(data);
    }

    static char* promptOf(EditLine*)
    {
        static std::string text = prompt;
        return text.data();
    }

    static int onRead(EditLine* editor, wchar_t* character) { return self(editor).read(*character); }
    static unsigned char onComplete(EditLine* editor, wint_t) { return self(editor).complete(); }
    static unsigned char onClear(EditLine* editor, wint_t) { return self(editor).clear(); }
    static unsigned char onSuspend(EditLine* editor, wint_t) { return self(editor).suspend(); }

    /// The next character that is typed. Bytes that are none in this locale are passed over, and NUL, for which libedit
    /// takes every key that the terminal has switched off.
    /// @return as libedit has it: 1; 0: the end; -1: the terminal cannot be read
    int read(wchar_t& character)
    {
        constexpr wchar_t ctrlC = 3;
        std::mbstate_t state{};
        for (;;) {
            waitForKey();
            if (m_signals.isEndWanted()) {
                return 0;
            }
            if (std::exchange(m_isInterrupt, false)) {
                character = ctrlC;
                return 1;
            }
            char byte = 0;
            const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
            if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) {
                return static_cast<int>(count);
            }
            if (count == 1 && completes(character, byte, state) && character != 0) {
                return 1;
            }
        }
    }

    /// Until there is something to read, or a signal that ends the line.
    void waitForKey()
    {
        std::array<pollfd, 2> watched{pollfd{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
            {.fd = m_signals.descriptor(), .events = POLLIN, .revents = 0}};
        while (!m_isInterrupt && !m_signals.isEndWanted() && watched[0].revents == 0) {
            if (poll(watched.data(), watched.size(), -1) < 0) {
                watched[0].revents = 0;
            }
            for (int signal = m_signals.take(); signal != 0; signal = m_signals.take()) {
                onSignal(signal);
            }
        }
    }

    /// Whoever had the terminal while the program was stopped may have left it otherwise.
    void onSignal(int signal)
    {
        m_isInterrupt = m_isInterrupt || signal == SIGINT;
        if (signal == SIGCONT) {
            prepareTerminal(false);
            prepareTerminal(true);
        }
        if (signal == SIGWINCH || signal == SIGCONT) {
            show("\r" + clearBelow);
            el_resize(m_editor.get());
            el_set(m_editor.get(), EL_REFRESH);
        }
    }

    void prepareTerminal(bool isForEditing) { el_set(m_editor.get(), EL_PREP_TERM, isForEditing ? 1 : 0); }

    /// What was typed up to the cursor stays to be seen; a new line begins.
    unsigned char clear()
    {
        m_isCleared = true;
        show("^C" + clearBelow + "\r\n");
        return CC_NEWLINE;
    }

    unsigned char suspend()
    {
        prepareTerminal(false);
        show(clearBelow + "\r\n");
        std::raise(SIGTSTP);
        m_isInterrupt = m_signals.isInterrupted() && !m_signals.isEndWanted();
        prepareTerminal(true);
        el_set(m_editor.get(), EL_REFRESH);
        return CC_NORM;
    }

    /// Goes on with the word as far as there is no choice; where there is, shows it.
    unsigned char complete()
    {
        const LineInfoW& line = *el_wline(m_editor.get());
        const std::string begun = narrow({line.buffer, static_cast<std::size_t>(line.cursor - line.buffer)});
        const Completion completion = m_complete(begun);
        if (completion.words.empty()) {
            return CC_ERROR;
        }
        const std::string common = commonBeginning(completion.words);
        const bool isWhole = completion.words.size() == 1 && !common.ends_with('/');
        const std::wstring word = wide(asWord(common) + (isWhole ? " " : ""));
        const std::wstring old = wide(std::string_view(begun).substr(completion.begin));
        if (word == old) {
            list(completion.words);
            el_set(m_editor.get(), EL_REFRESH);
            return CC_NORM;
        }
        el_wdeletestr(m_editor.get(), static_cast<int>(old.size()));
        return el_winsertstr(m_editor.get(), word.c_str()) < 0 ? CC_ERROR : CC_REFRESH;
    }

    /// Below the line, in columns.
    void list(Words words) const
    {
        constexpr std::size_t most = 100;
        constexpr std::size_t gap = 2;
        const std::size_t more = words.size() - std::min(words.size(), most);
        words.resize(words.size() - more);
        std::size_t widest = 1;
        for (std::string& word : words) {
            word = support::shown(word);
            widest = std::max(widest, word.size() + gap);
        }
        const std::size_t columns =
            std::max<std::size_t>(1, static_cast<std::size_t>(terminalWidth(fileno(m_shown))) / widest);
        std::string text = clearBelow;
        for (std::size_t index = 0; index < words.size(); ++index) {
            text += (index % columns == 0 ? "\r\n" : "") + fmt::format("{:<{}}", words[index], widest);
        }
        show(text + (more > 0 ? fmt::format("\r\nand {} more", more) : "") + "\r\n");
    }

    std::string keep(std::wstring_view text)
    {
        while (!text.empty() && text.back() == L'\n') {
            text.remove_suffix(1);
        }
        std::string line = narrow(text);
        const std::string failureBefore = m_kept.failure();
        if (m_kept.add(line)) {
            HistEventW event{};
            history_w(m_history.get(), &event, H_ENTER, wide(line).c_str());
        }
        if (m_kept.failure() != failureBefore) {
            std::cerr << support::prefixed(m_kept.failure(), "sdc: ") << std::flush;
        }
        return line;
    }

    void show(const std::string& text) const
    {
        std::fputs(text.c_str(), m_shown);
        std::fflush(m_shown);
    }

    Signals& m_signals;
    LineHistory& m_kept;
    Completer m_complete;
    std::FILE* m_shown;
    Characters m_characters;
    std::unique_ptr<HistoryW, EndedBy<history_wend>> m_history;
    std::unique_ptr<EditLine, EndedBy<el_end>> m_editor;
    bool m_isInterrupt = false; ///< has come as a signal: not from the keyboard
    bool m_isCleared = false;
};

} // namespace

std::unique_ptr<LineSource> makeLineEditor(Signals& signals, LineHistory& history, Completer complete, std::FILE* shown)
{
    return std::make_unique<LineEditor>(signals, history, std::move(complete), shown);
}

} // namespace sdc
