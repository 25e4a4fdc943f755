// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/tlscertificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

namespace Simulator {
namespace {

const long validity = 30L * 24 * 3600;

template <typename WriteFunction> QByteArray pem(WriteFunction write)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    if (!bio || write(bio.get()) != 1)
        return QByteArray();
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &data);
    return QByteArray(data, int(size));
}

void addExtension(X509 *certificate, int nid, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

} // namespace

TlsCertificate TlsCertificate::generate()
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(2048), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    if (!key || !certificate)
        return {};
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validity);
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(
        name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("localhost"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_set_pubkey(certificate.get(), key.get());
    addExtension(certificate.get(), NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    if (X509_sign(certificate.get(), key.get(), EVP_sha256()) == 0)
        return {};
    return { pem([&](BIO *bio) { return PEM_write_bio_X509(bio, certificate.get()); }), pem([&](BIO *bio) {
                return PEM_write_bio_PrivateKey(bio, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
            }) };
}

} // namespace Simulator
