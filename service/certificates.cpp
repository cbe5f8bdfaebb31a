#include "service/certificates.h"

#include "service/diskfile.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

namespace
{
constexpr int KeyBits = 2048;
constexpr long Day = 24L * 60 * 60;
constexpr long AuthorityLife = 3650 * Day, CertificateLife = 397 * Day, RenewBefore = 30 * Day;

template <auto Free> struct Deleter
{
    template <class T> void operator()(T* object) const
    {
        Free(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Bio = std::unique_ptr<BIO, Deleter<BIO_free_all>>;
using Extension = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;
using Number = std::unique_ptr<BIGNUM, Deleter<BN_free>>;
using Names = std::unique_ptr<GENERAL_NAMES, Deleter<GENERAL_NAMES_free>>;

void Require(bool succeeded)
{
    if (!succeeded)
        throw std::runtime_error("making a certificate failed");
}

Key NewKey()
{
    Key key(EVP_RSA_gen(KeyBits));
    Require(key != nullptr);
    return key;
}

std::string Text(BIO* bio)
{
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return {data, static_cast<std::size_t>(size)};
}

std::string ToPem(EVP_PKEY* key)
{
    const Bio bio(BIO_new(BIO_s_mem()));
    Require(PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1);
    return Text(bio.get());
}

std::string ToPem(X509* certificate)
{
    const Bio bio(BIO_new(BIO_s_mem()));
    Require(PEM_write_bio_X509(bio.get(), certificate) == 1);
    return Text(bio.get());
}

Certificate ReadCertificate(const std::string& path)
{
    const Bio bio(BIO_new_file(path.c_str(), "r"));
    return Certificate(bio ? PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}

Key ReadKey(const std::string& path)
{
    const Bio bio(BIO_new_file(path.c_str(), "r"));
    return Key(bio ? PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}

void AddExtension(X509* certificate, X509* issuer, int nid, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()));
    Require(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

/// `issuer` null: signs itself.
Certificate NewCertificate(const std::string& name, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                           long life, const std::vector<std::string>& hosts)
{
    Certificate certificate(X509_new());
    Require(certificate && X509_set_version(certificate.get(), 2) == 1);
    const Number serial(BN_new());
    Require(serial && BN_rand(serial.get(), 127, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1 &&
            BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate.get())));
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -Day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), life);
    Require(X509_set_pubkey(certificate.get(), key) == 1);
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    Require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0) == 1);
    X509* signer = issuer ? issuer : certificate.get();
    Require(X509_set_issuer_name(certificate.get(), X509_get_subject_name(signer)) == 1);
    AddExtension(certificate.get(), signer, NID_subject_key_identifier, "hash");
    if (issuer)
    {
        AddExtension(certificate.get(), signer, NID_authority_key_identifier, "keyid:always");
        AddExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
        AddExtension(certificate.get(), signer, NID_key_usage, "critical,digitalSignature,keyEncipherment");
        AddExtension(certificate.get(), signer, NID_ext_key_usage, "serverAuth");
        std::string names;
        for (const std::string& host : hosts)
            names += (names.empty() ? "DNS:" : ",DNS:") + host;
        AddExtension(certificate.get(), signer, NID_subject_alt_name, names);
    }
    else
    {
        AddExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
        AddExtension(certificate.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
    }
    Require(X509_sign(certificate.get(), issuerKey, EVP_sha256()) > 0);
    return certificate;
}

std::vector<std::string> HostNames(X509* certificate)
{
    std::vector<std::string> hosts;
    const Names names(
        static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)));
    for (int i = 0; names && i < sk_GENERAL_NAME_num(names.get()); ++i)
    {
        const GENERAL_NAME* name = sk_GENERAL_NAME_value(names.get(), i);
        if (name->type == GEN_DNS)
            hosts.emplace_back(reinterpret_cast<const char*>(ASN1_STRING_get0_data(name->d.dNSName)),
                               static_cast<std::size_t>(ASN1_STRING_length(name->d.dNSName)));
    }
    return hosts;
}

bool StillGood(X509* certificate, EVP_PKEY* key, X509* authority, const std::vector<std::string>& names)
{
    time_t soon = time(nullptr) + RenewBefore;
    return certificate && key && X509_check_private_key(certificate, key) == 1 &&
           X509_verify(certificate, X509_get0_pubkey(authority)) == 1 &&
           X509_cmp_time(X509_get0_notAfter(certificate), &soon) > 0 && HostNames(certificate) == names;
}

// Letters, digits, hyphens and dots: what goes into the extension's text as it stands.
bool IsHostName(const std::string& name)
{
    return !name.empty() && name.size() <= 253 &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-.") ==
               std::string::npos;
}
} // namespace

namespace svc
{
CertificateFiles EnsureCertificates(const std::string& folder, const std::vector<std::string>& names)
{
    for (const std::string& name : names)
        if (!IsHostName(name))
            throw std::runtime_error("\"" + name + "\" is not a host name");

    const std::string keyPath = folder + "/ca.key";
    CertificateFiles files{folder + "/ca.pem", folder + "/server.pem", folder + "/server.key"};
    Certificate authority = ReadCertificate(files.authority);
    Key authorityKey = ReadKey(keyPath);
    if (!authority || !authorityKey || X509_check_private_key(authority.get(), authorityKey.get()) != 1)
    {
        // Clients trust the one that is there: it is replaced by nobody but its owner.
        if (std::filesystem::exists(files.authority))
            throw std::runtime_error(files.authority + " and " + keyPath + " do not belong together");
        authorityKey = NewKey();
        authority = NewCertificate("Record sharing service, own authority", authorityKey.get(), nullptr,
                                   authorityKey.get(), AuthorityLife, {});
        WriteWhole(keyPath, ToPem(authorityKey.get()));
        WriteWhole(files.authority, ToPem(authority.get()));
    }

    const Certificate present = ReadCertificate(files.certificate);
    const Key presentKey = ReadKey(files.key);
    if (!StillGood(present.get(), presentKey.get(), authority.get(), names))
    {
        const Key key = NewKey();
        const Certificate made = NewCertificate(names.front(), key.get(), authority.get(), authorityKey.get(),
                                                CertificateLife, names);
        WriteWhole(files.key, ToPem(key.get()));
        WriteWhole(files.certificate, ToPem(made.get()) + ToPem(authority.get()));
    }
    return files;
}
} // namespace svc
