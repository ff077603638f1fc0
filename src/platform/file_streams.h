// SPDX-License-Identifier: Apache-2.0
// Binary files as sequences of bytes: the containers that an application keeps its scenes in.
//
//     FileStreamEndian stream("scene.bin", FileStream::Mode::write, FileStreamEndian::Order::big);
//     stream.WriteUInt(7);
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "core/export.h"

namespace tidemark::platform {

/// A file that cannot be opened, that ends too early, or that cannot be written; the text names it.
class SLUICE_API FileStreamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An open file with a position. The file is closed with the object.
class SLUICE_API FileStream {
public:
    enum class Mode { read, write };

    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    const std::string& path() const { return path_; }
    /// Exactly `count` bytes. Throws `FileStreamError` when there are fewer.
    void readBytes(void* bytes, std::size_t count);
    /// Throws `FileStreamError` when not all of them can be written.
    void writeBytes(const void* bytes, std::size_t count);
    /// Bytes between the position and the end of a file that is read.
    uint64_t bytesLeft() const;
    /// Throws `FileStreamError` when what was written did not reach the file.
    void close();

protected:
    /// Throws `FileStreamError`. Only regular files are opened.
    FileStream(const std::string& path, Mode mode, std::size_t bufferBytes);
    ~FileStream();

private:
    std::string path_;
    std::FILE* file_;
};

/// Every operation goes to the system.
class SLUICE_API FileStreamRaw : public FileStream {
public:
    FileStreamRaw(const std::string& path, Mode mode) : FileStream(path, mode, 0) {}
};

/// Small operations are gathered.
class SLUICE_API FileStreamRawBuffered : public FileStream {
public:
    FileStreamRawBuffered(const std::string& path, Mode mode) : FileStream(path, mode, 65536) {}
};

/// Numbers have a byte order of their own, whatever the machine's is.
class SLUICE_API FileStreamEndian : public FileStream {
public:
    enum class Order { little, big };

    FileStreamEndian(const std::string& path, Mode mode, Order order)
        : FileStream(path, mode, 65536), order_(order) {}
    /// The machine's order.
    static Order machineOrder();

    uint32_t ReadUInt();
    void WriteUInt(uint32_t number);

private:
    Order order_;
};

} // namespace tidemark::platform
