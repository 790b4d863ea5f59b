#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder of the test's own.
class FolderFixture : public testing::Test {
protected:
    FolderFixture()
    {
        std::string name = (std::filesystem::temp_directory_path() / "sdc-output.XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    ~FolderFixture() override { std::filesystem::remove_all(m_folder); }

    std::string in(const std::string& name) const { return (m_folder / name).string(); }

    static std::string contentsOf(const std::string& file)
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void make(const std::string& name, const std::string& text) const { std::ofstream(in(name), std::ios::binary) << text; }

    std::size_t filesInFolder() const
    {
        namespace fs = std::filesystem;
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

    std::filesystem::path m_folder;
};
