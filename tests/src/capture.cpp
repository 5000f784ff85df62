#include "capture.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>

std::string Capture(const std::function<void()>& print)
{
    fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    const int memory = memfd_create("stdout", 0);
    if (saved < 0 || memory < 0 || dup2(memory, STDOUT_FILENO) < 0)
    {
        ADD_FAILURE() << "cannot redirect stdout";
        return {};
    }
    print();
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);

    std::string text;
    std::array<char, 65536> chunk;
    lseek(memory, 0, SEEK_SET);
    for (ssize_t n; (n = read(memory, chunk.data(), chunk.size())) > 0;) text.append(chunk.data(), static_cast<size_t>(n));
    close(memory);
    return text;
}

std::vector<std::string> CaptureLines(const std::function<void()>& print)
{
    const std::string text = Capture(print);
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) lines.push_back(text.substr(start, end - start));
    EXPECT_EQ(start, text.size()) << "the last line has no line feed";
    return lines;
}

std::string LineOf(const std::string& text, const std::string& label)
{
    const size_t at = text.find(label);
    if (at == std::string::npos) return {};
    EXPECT_EQ(text.find(label, at + 1), std::string::npos) << "several lines hold " << label;
    const size_t start = text.rfind('\n', at) + 1; // npos + 1 is 0
    return text.substr(start, text.find('\n', at) - start);
}
