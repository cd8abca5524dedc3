#ifndef TOOLS_SERVICE_HTTP_FILE_DESCRIPTOR_H
#define TOOLS_SERVICE_HTTP_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace tovik_service::http {

/// Owns a file descriptor.
class FileDescriptor
{
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other)
            reset(std::exchange(other.number_, -1));
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

    void reset(int number = -1)
    {
        if (number_ >= 0)
            ::close(number_);
        number_ = number;
    }

private:
    int number_;
};

} // namespace tovik_service::http

#endif
