#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Empty if there is no such file.
inline std::string BytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

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

    std::filesystem::path operator/(const std::string& name) const { return Path(name); }

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

    int Count() const
    {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(m_path), {}));
    }

    void Write(const std::string& name, std::string_view content) const
    {
        std::ofstream(Path(name), std::ios::binary) << content;
    }

    std::string Read(const std::string& name) const { return BytesOf(Path(name)); }

private:
    std::string m_path;
};
