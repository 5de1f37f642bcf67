#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zelcli {

/// Work failed: the text says why in one line, without the file's name (the command adds it).
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A failure that names its file itself, where that is not the input at hand. An empty file is left out.
class FileFailure : public Failure {
public:
    FileFailure(std::string file, const std::string& why) : Failure(why), m_file(std::move(file)) {}
    const std::string& file() const { return m_file; }

private:
    std::string m_file;
};

/// What the user typed cannot be understood; the text is one line. The command exits with status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace zelcli
