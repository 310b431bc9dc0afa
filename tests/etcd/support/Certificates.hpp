/// Certificates for tests.
#pragma once

#include "BackgroundProcess.hpp"

#include "support/TemporaryDirectory.hpp"

#include <filesystem>
#include <string>

namespace test {

/// An authority, and the certificate of a server at 127.0.0.1, in a temporary folder. Made by
/// openssl.
class Certificates {
public:
    Certificates() {
        openssl(
            "req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -days 2 -subj /CN=ca");
        openssl("req -newkey rsa:2048 -nodes -keyout server.key -out server.csr -subj /CN=server");
        folder.write("extensions", "subjectAltName=IP:127.0.0.1\n");
        sign(2);
    }

    /// Makes the certificate of the server anew.
    /// @param days  0: it expires at once
    void sign(int days) const {
        openssl("x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial "
                "-extfile extensions -out next.pem -days " +
                std::to_string(days));
        std::filesystem::rename(folder.path / "next.pem", folder.path / "server.pem");
    }

    std::string file(const std::string& name) const { return (folder.path / name).string(); }

private:
    void openssl(const std::string& words) const {
        runProgram("cd " + folder.path.string() + " && openssl " + words);
    }

    const TemporaryDirectory folder;
};

} // namespace test
