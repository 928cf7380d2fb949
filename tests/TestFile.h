#pragma once

#include "TestFolder.h"

#include <string>

// A file of the test's own, gone at the end.
class TestFile
{
public:
    TestFile(const std::string& name, const std::string& text)
        : m_path(m_folder.Path(name))
    {
        Write(text);
    }

    void Write(const std::string& text) const { std::ofstream(m_path, std::ios::binary) << text; }

    std::string Read() const { return BytesOf(m_path); }

    const std::string& Path() const { return m_path; }

private:
    TestFolder m_folder;
    std::string m_path;
};
