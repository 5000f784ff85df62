/**
 * @file scratch_directory.h
 * A directory for the files of one test, removed with all that is in it.
 */
#ifndef SCRATCH_DIRECTORY_H
#define SCRATCH_DIRECTORY_H

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

class ScratchDirectory
{
public:
    ScratchDirectory()
    {
        std::string path = (std::filesystem::temp_directory_path() / "decstats_test.XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("mkdtemp");
        path_ = path;
    }
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::string path() const { return path_.string(); }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

    /** Writes a file of the directory. @return its path */
    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream file(path_ / name, std::ios::binary);
        file << content;
        file.close();
        if (!file) throw std::runtime_error("cannot write " + name);
        return *this / name;
    }

    /** The names in the directory, hidden ones included, sorted. */
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path path_;
};

/** The whole content of a file. */
inline std::string content_of(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

#endif
