#include "Fingerprint.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "Console.h"

namespace quarry::command {
namespace {

/// A file that is open for reading.
class OpenFile {
public:
    // Without O_NONBLOCK the call would wait until somebody writes to it when the file is a pipe.
    explicit OpenFile(const std::filesystem::path& path_)
        : path(path_), file(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (file < 0) Refuse();
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { close(file); }

    bool IsFile() const {
        struct stat status {};
        if (fstat(file, &status) != 0) Refuse();
        return S_ISREG(status.st_mode);
    }

    /// @return 0 at the end
    std::size_t Read(std::vector<unsigned char>& bytes) const {
        ssize_t count = -1;
        do count = read(file, bytes.data(), bytes.size());
        while (count < 0 && errno == EINTR);
        if (count < 0) Refuse();
        return static_cast<std::size_t>(count);
    }

private:
    [[noreturn]] void Refuse() const {
        throw Failure(path.string() + ": cannot be read: " + std::system_category().message(errno));
    }

    const std::filesystem::path& path;
    int file;
};

void Check(int succeeded) {
    if (succeeded != 1) throw std::runtime_error("SHA-256 cannot be computed");
}

}  // namespace

Fingerprint FingerprintOf(const std::filesystem::path& path) {
    const OpenFile file(path);
    if (!file.IsFile()) throw Failure(path.string() + ": not a file");
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!context) throw std::bad_alloc();
    Check(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr));
    Fingerprint fingerprint;
    std::vector<unsigned char> block(1 << 20);
    while (const std::size_t count = file.Read(block)) {
        Check(EVP_DigestUpdate(context.get(), block.data(), count));
        fingerprint.bytes += count;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    Check(EVP_DigestFinal_ex(context.get(), digest.data(), &length));
    for (unsigned int i = 0; i < length; ++i) fingerprint.sha256 += fmt::format("{:02x}", digest[i]);
    return fingerprint;
}

}  // namespace quarry::command
