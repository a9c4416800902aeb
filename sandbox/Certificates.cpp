// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Certificates.h"

#include <arpa/inet.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include "sandbox/OwnFile.h"

namespace korvane::sandbox {
namespace {

struct Deleter {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
    void operator()(BIO* bio) const { BIO_free(bio); }
    void operator()(NAME_CONSTRAINTS* names) const { NAME_CONSTRAINTS_free(names); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter>;
using Certificate = std::unique_ptr<X509, Deleter>;
using Bio = std::unique_ptr<BIO, Deleter>;

struct Pair {
    Certificate certificate;
    Key key;
};

constexpr long day = 24 * 60 * 60;
constexpr long caDays = 3650;
constexpr long serverDays = 397;  // the longest life that strict TLS clients accept
constexpr long renewDays = 30;

struct ExtensionText {
    int nid;
    std::string value;
};
using Extensions = std::vector<ExtensionText>;

/// How OpenSSL's extension texts write a host: "DNS:name" or "IP:address", with
/// a mask for a constraint. "" when it is neither: nothing of a host may become
/// another extension.
std::string named(const std::string& host, bool masked) {
    std::array<unsigned char, 16> ignored{};
    if (::inet_pton(AF_INET, host.c_str(), ignored.data()) == 1) {
        return "IP:" + host + (masked ? "/255.255.255.255" : "");
    }
    if (::inet_pton(AF_INET6, host.c_str(), ignored.data()) == 1) {
        return "IP:" + host + (masked ? "/ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff" : "");
    }
    const bool isName = std::ranges::all_of(
        host, [](unsigned char c) { return c < 0x80 && (std::isalnum(c) || c == '.' || c == '-'); });
    return isName && !host.empty() ? "DNS:" + host : std::string{};
}

/// "DNS:localhost,IP:127.0.0.1,…", each with what goes before it.
std::string names(const std::string& host, bool constraint) {
    std::string list;
    for (const std::string& name :
         {std::string("localhost"), std::string("127.0.0.1"), std::string("::1"), host}) {
        if (name.empty()) continue;
        list +=
            (list.empty() ? "" : ",") + std::string(constraint ? "permitted;" : "") + named(name, constraint);
    }
    return list;
}

Extensions caExtensions(const std::string& host) {
    return {
        {NID_basic_constraints, "critical,CA:TRUE,pathlen:0"},
        {NID_key_usage, "critical,keyCertSign,cRLSign"},
        {NID_subject_key_identifier, "hash"},
        {NID_name_constraints, "critical," + names(host, true)},
    };
}

Extensions serverExtensions(const std::string& host) {
    return {
        {NID_basic_constraints, "critical,CA:FALSE"},
        {NID_key_usage, "critical,digitalSignature"},
        {NID_ext_key_usage, "serverAuth"},
        {NID_subject_key_identifier, "hash"},
        {NID_authority_key_identifier, "keyid"},
        {NID_subject_alt_name, names(host, false)},
    };
}

bool extend(X509* certificate, X509* issuer, const Extensions& extensions) {
    for (const auto& [nid, value] : extensions) {
        X509V3_CTX context;
        X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
        const std::unique_ptr<X509_EXTENSION, Deleter> extension{
            X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str())};
        if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1) return false;
    }
    return true;
}

bool setSerial(X509* certificate) {
    std::array<unsigned char, 16> bytes;
    if (RAND_bytes(bytes.data(), bytes.size()) != 1) return false;
    bytes[0] = static_cast<unsigned char>((bytes[0] & 0x7F) | 0x40);  // positive, and always as long
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> number{BN_bin2bn(bytes.data(), bytes.size(), nullptr),
                                                             BN_free};
    return number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate));
}

/// Self-signed when there is no issuer. Null members when OpenSSL fails.
Pair make(const char* commonName, long days, const Extensions& extensions, const Pair* issuer) {
    Pair pair{Certificate{X509_new()}, Key{EVP_EC_gen("P-256")}};
    X509* const certificate = pair.certificate.get();
    if (!certificate || !pair.key) return {};
    X509_NAME* const subject = X509_get_subject_name(certificate);
    X509* const issuing = issuer ? issuer->certificate.get() : certificate;
    const auto* const name = reinterpret_cast<const unsigned char*>(commonName);
    const bool made = X509_set_version(certificate, X509_VERSION_3) == 1 && setSerial(certificate) &&
                      // An hour early, for clients whose clock is behind.
                      X509_gmtime_adj(X509_getm_notBefore(certificate), -60 * 60) &&
                      X509_gmtime_adj(X509_getm_notAfter(certificate), days * day) &&
                      X509_set_pubkey(certificate, pair.key.get()) == 1 &&
                      X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, name, -1, -1, 0) == 1 &&
                      X509_set_issuer_name(certificate, X509_get_subject_name(issuing)) == 1 &&
                      extend(certificate, issuing, extensions) &&
                      X509_sign(certificate, issuer ? issuer->key.get() : pair.key.get(), EVP_sha256()) > 0;
    return made ? std::move(pair) : Pair{};
}

std::string textOf(BIO* bio) {
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return {data, static_cast<std::size_t>(size)};
}

std::string pem(X509* certificate) {
    const Bio bio{BIO_new(BIO_s_mem())};
    return bio && PEM_write_bio_X509(bio.get(), certificate) == 1 ? textOf(bio.get()) : std::string{};
}

std::string pem(EVP_PKEY* key) {
    const Bio bio{BIO_new(BIO_s_secmem())};
    if (!bio || PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) != 1)
        return {};
    return textOf(bio.get());
}

Outcome<Pair> storedAuthority(const std::filesystem::path& certificateFile,
                              const std::filesystem::path& keyFile) {
    for (const std::filesystem::path& path : {certificateFile, keyFile})
        if (std::string wrong = ownFileProblem(path); !wrong.empty()) return Failure{wrong};
    const Outcome<std::string> certificateText = readOwnFile(certificateFile);
    if (!certificateText) return Failure{certificateText.reason()};
    const Outcome<std::string> keyText = readOwnFile(keyFile);
    if (!keyText) return Failure{keyText.reason()};
    const Bio certificateBio{
        BIO_new_mem_buf(certificateText->data(), static_cast<int>(certificateText->size()))};
    const Bio keyBio{BIO_new_mem_buf(keyText->data(), static_cast<int>(keyText->size()))};
    Pair pair{Certificate{PEM_read_bio_X509(certificateBio.get(), nullptr, nullptr, nullptr)},
              Key{PEM_read_bio_PrivateKey(keyBio.get(), nullptr, nullptr, nullptr)}};
    if (!pair.certificate) return Failure{certificateFile.string() + " holds no certificate"};
    if (!pair.key) return Failure{keyFile.string() + " holds no private key"};
    if (X509_check_private_key(pair.certificate.get(), pair.key.get()) != 1) {
        return Failure{keyFile.string() + " is not the key of " + certificateFile.string()};
    }
    return pair;
}

bool lasts(X509* certificate) {
    time_t renewal = ::time(nullptr) + renewDays * day;
    return X509_cmp_time(X509_get0_notAfter(certificate), &renewal) > 0;
}

Outcome<Pair> authority(const std::string& directory, const std::string& host) {
    const std::filesystem::path certificateFile = std::filesystem::path(directory) / "ca.pem";
    const std::filesystem::path keyFile = std::filesystem::path(directory) / "ca-key.pem";
    const auto isThere = [](const std::filesystem::path& path) {
        std::error_code ignored;  // a link to nowhere is there, too
        return std::filesystem::symlink_status(path, ignored).type() > std::filesystem::file_type::not_found;
    };
    if (!directory.empty() && (isThere(certificateFile) || isThere(keyFile))) {
        Outcome<Pair> stored = storedAuthority(certificateFile, keyFile);
        if (!stored || lasts(stored->certificate.get())) return stored;
    }
    Pair made = make("Korvane sandbox CA", caDays, caExtensions(host), nullptr);
    if (!made.certificate) return Failure{"cannot make the CA certificate"};
    if (directory.empty()) return made;
    std::error_code failure;
    if (std::filesystem::create_directories(directory, failure))
        std::filesystem::permissions(directory, std::filesystem::perms::owner_all, failure);
    if (failure) return Failure{"cannot make the directory " + directory + ": " + failure.message()};
    std::string error = writeOwnFile(keyFile, pem(made.key.get()));
    if (error.empty()) error = writeOwnFile(certificateFile, pem(made.certificate.get()));
    if (!error.empty()) return Failure{error};
    return made;
}

/// A CA that is kept was made for the names of its time.
bool permits(X509* ca, X509* server) {
    X509_check_purpose(server, -1, 0);  // has OpenSSL look at the extensions of a certificate that it made
    const std::unique_ptr<NAME_CONSTRAINTS, Deleter> names{
        static_cast<NAME_CONSTRAINTS*>(X509_get_ext_d2i(ca, NID_name_constraints, nullptr, nullptr))};
    return !names || NAME_CONSTRAINTS_check(server, names.get()) == X509_V_OK;
}

}  // namespace

Outcome<ServerCertificate> makeServerCertificate(const std::string& directory, const std::string& host) {
    if (!host.empty() && named(host, false).empty()) return Failure{host + " is neither address nor name"};
    const Outcome<Pair> ca = authority(directory, host);
    if (!ca) return Failure{ca.reason()};
    const Pair server = make("localhost", serverDays, serverExtensions(host), &*ca);
    if (!server.certificate) return Failure{"cannot make the server certificate"};
    if (!permits(ca->certificate.get(), server.certificate.get())) {
        return Failure{"the CA in " + directory + " is not for " + host + ": use another directory for it"};
    }
    return ServerCertificate{pem(ca->certificate.get()), pem(server.certificate.get()),
                             pem(server.key.get())};
}

}  // namespace korvane::sandbox
