#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace tests {

/// PATH as it is given, for as long as it lives.
class SearchPath {
public:
    explicit SearchPath(const std::string& path)
        : m_before(std::getenv("PATH"))
    {
        setenv("PATH", path.c_str(), 1);
    }
    ~SearchPath() { setenv("PATH", m_before.c_str(), 1); }
    SearchPath(const SearchPath&) = delete;
    SearchPath& operator=(const SearchPath&) = delete;

private:
    std::string m_before;
};

/// A script that is found as gnuplot for as long as it lives.
class FakeGnuplot {
public:
    explicit FakeGnuplot(const std::string& script, const std::string& interpreter = "/bin/sh")
    {
        const std::filesystem::path program = m_folder.path / "gnuplot";
        std::ofstream(program) << "#!" << interpreter << "\n" << script << "\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

private:
    struct Folder {
        std::filesystem::path path;
        Folder()
        {
            std::string name = (std::filesystem::temp_directory_path() / "sdc-gnuplot.XXXXXX").string();
            path = mkdtemp(name.data());
        }
        ~Folder() { std::filesystem::remove_all(path); }
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
    };

    Folder m_folder;
    SearchPath m_path{m_folder.path.string() + ":" + std::getenv("PATH")};
};

} // namespace tests
