// SPDX-License-Identifier: Apache-2.0
#include "sandbox/OwnFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "sandbox/Random.h"

namespace korvane::sandbox {
namespace {

constexpr int always = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;  // a planted pipe must not hold up the start
constexpr mode_t byOthers = S_IWGRP | S_IWOTH;

class File {
  public:
    File(const std::string& path, int flags) : descriptor_(::open(path.c_str(), flags | always, 0600)) {}
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    bool close() { return descriptor_ < 0 || ::close(std::exchange(descriptor_, -1)) == 0; }

  private:
    int descriptor_;
};

std::string failure(const std::string& what, const std::string& path) {
    return what + " " + path + ": " + std::strerror(errno);
}

std::string folderProblem(const std::string& path) {
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const std::string folder = parent.empty() ? "." : parent.string();
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) return failure("cannot use the folder", folder);
    if (status.st_uid != ::geteuid() && status.st_uid != 0)
        return "the folder " + folder + " is another user's";
    if ((status.st_mode & byOthers) != 0 && (status.st_mode & S_ISVTX) == 0)
        return "others can write to the folder " + folder + ": take that from them, or use another";
    return {};
}

std::string fileProblem(const std::string& path, const struct stat& status) {
    if (S_ISLNK(status.st_mode)) return path + " is a symbolic link, which is not followed";
    if (!S_ISREG(status.st_mode)) return path + " is no file";
    if (status.st_uid != ::geteuid()) return path + " is another user's file";
    if ((status.st_mode & byOthers) != 0) return "others can write to " + path;
    return {};
}

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR) return false;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

}  // namespace

std::string ownFileProblem(const std::string& path) {
    if (std::string wrong = folderProblem(path); !wrong.empty()) return wrong;
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? fileProblem(path, status) : "";
}

std::string writeOwnFile(const std::string& path, const std::string& text) {
    if (std::string wrong = ownFileProblem(path); !wrong.empty()) return wrong;
    const std::string temporary = path + "." + Random(std::nullopt).hex(8) + ".new";
    File file(temporary, O_WRONLY | O_CREAT | O_EXCL);
    if (!file) return failure("cannot write", path);
    const bool written = writeAll(file.descriptor(), text) && file.close();
    if (written && std::rename(temporary.c_str(), path.c_str()) == 0) return {};
    std::string wrong = failure("cannot write", path);
    ::unlink(temporary.c_str());
    return wrong;
}

Outcome<std::string> readOwnFile(const std::string& path) {
    if (std::string wrong = ownFileProblem(path); !wrong.empty()) return Failure{wrong};
    const File file(path, O_RDONLY);
    struct stat status {};
    if (!file || ::fstat(file.descriptor(), &status) != 0) return Failure{failure("cannot read", path)};
    if (std::string wrong = fileProblem(path, status); !wrong.empty()) return Failure{wrong};
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t count; (count = ::read(file.descriptor(), buffer.data(), buffer.size())) != 0;) {
        if (count < 0) return Failure{failure("cannot read", path)};
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

std::string claimOwnFile(const std::string& path) {
    if (std::string wrong = ownFileProblem(path); !wrong.empty()) return wrong;
    if (const File created(path, O_RDWR | O_CREAT | O_EXCL); created) return {};
    const File found(path, O_RDWR);
    struct stat status {};
    if (!found || ::fstat(found.descriptor(), &status) != 0) return failure("cannot use", path);
    return fileProblem(path, status);
}

}  // namespace korvane::sandbox
