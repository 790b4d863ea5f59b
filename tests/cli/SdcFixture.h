#pragma once

#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// What a run of the program came to.
struct Outcome {
    int status = -1; ///< as a shell reports it
    std::string out;
    std::string err;
};

/// The program as a person or a script runs it, in a folder of its own.
class Sdc : public testing::Test {
protected:
    Sdc()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "sdc-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }
    ~Sdc() override { std::filesystem::remove_all(folder); }

    std::string read(const std::string& name) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    /// Runs the program through the shell; paths among the arguments are relative to the test's own folder.
    Outcome run(
        const std::string& arguments, const std::string& environment = "", const std::string& output = ">out.txt") const
    {
        const std::string command = "cd '" + folder.string() + "' && { " + environment + " '" SDC_PROGRAM "' " + arguments
            + " " + output + "; } 2>err.txt </dev/null";
        const int result = std::system(command.c_str());
        return {WIFEXITED(result) ? WEXITSTATUS(result) : 128 + WTERMSIG(result), read("out.txt"), read("err.txt")};
    }

    /// A built-in scenario, changed, as a file of the test's folder. Each pair is a text that stands in it once, and what
    /// takes its place.
    void writeScenario(const std::string& name, const std::string& builtIn,
        const std::vector<std::pair<std::string, std::string>>& changes) const
    {
        std::string text = run("scenarios show " + builtIn).out;
        for (const auto& [before, after] : changes) {
            const std::size_t place = text.find(before);
            ASSERT_NE(place, std::string::npos) << before;
            text.replace(place, before.size(), after);
        }
        write(name, text);
    }

    /// The same with faults of its first channel's radio.
    void writeFaultyScenario(const std::string& name, const std::string& faults) const
    {
        writeScenario(name, "18-f595", {{"\"emitters\":", "\"faults\": [" + faults + "], \"emitters\":"}});
    }

    std::filesystem::path folder;
};

inline std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        all.push_back(line);
    }
    return all;
}

/// The program in a process of its own, which a test can signal.
class RunningSdc {
public:
    /// Its output goes into out.txt and err.txt of the folder.
    /// @param ignored  a signal that it is started with as ignored
    RunningSdc(const std::filesystem::path& folder, std::vector<std::string> arguments, int ignored = 0)
    {
        std::filesystem::remove(folder / "out.txt");
        std::filesystem::remove(folder / "err.txt");
        std::fflush(nullptr);
        m_pid = fork();
        if (m_pid == 0) {
            std::vector<char*> words;
            arguments.insert(arguments.begin(), "sdc");
            for (std::string& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            std::filesystem::current_path(folder);
            for (const int signal : {SIGINT, SIGTERM, SIGHUP}) { // a shell may have let the tests ignore some
                static_cast<void>(std::signal(signal, signal == ignored ? SIG_IGN : SIG_DFL));
            }
            if (std::freopen("out.txt", "w", stdout) != nullptr && std::freopen("err.txt", "w", stderr) != nullptr) {
                execv(SDC_PROGRAM, words.data());
            }
            _exit(126);
        }
    }

    ~RunningSdc()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitForExitStatus();
        }
    }

    RunningSdc(const RunningSdc&) = delete;
    RunningSdc& operator=(const RunningSdc&) = delete;

    void send(int signal) const { kill(m_pid, signal); }
    void interrupt() const { send(SIGINT); }

    /// Bounded: a program that does not end is killed.
    int waitForExitStatus()
    {
        int status = 0;
        if (!tests::eventually([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, &status, 0);
        }
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); // as a shell reports it
    }

private:
    pid_t m_pid = -1;
};
