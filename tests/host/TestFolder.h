#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// A folder of its own for a test, gone afterwards.
class TestFolder
{
public:
    TestFolder()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "pxvis-test-XXXXXX";
        m_path = mkdtemp(pattern.data());
    }

    ~TestFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string Path(const std::string& name) const { return m_path + "/" + name; }

    // All names, sorted, each with a space behind it.
    std::string Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        std::string all;
        for (const std::string& name : names)
            all += name + " ";
        return all;
    }

    void Write(const std::string& name, const std::string& content) const
    {
        std::ofstream(Path(name), std::ios::binary) << content;
    }

    std::string Read(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }

private:
    std::string m_path;
};

// Stands in for a full disk: writes beyond the limit fail.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limited = { bytes, m_before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limited);
    }

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int) = nullptr;
};
