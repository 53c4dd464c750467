// What identities look like.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Each kind is numbered on its own.
enum class IdentityKind {
    subscriber,  ///< IMSI
    simCard,     ///< ICCID
    equipment,   ///< IMEI
    phone,
    mac,
    ipv4,
    ipv6,
    network,  ///< name of a Wi-Fi network
    host,
    password,
    message,
    other,
};

/// An identity in a text.
struct FoundIdentity {
    std::size_t begin;
    std::size_t length;
    IdentityKind kind;
};

/// The identities in @p text that can be told by their form: numbers of SIMs, devices and phones,
/// and addresses.
std::vector<FoundIdentity> FindIdentities(const std::string& text);

/// The kind of @p text by its form if all of it is one identity, otherwise @p otherwise.
IdentityKind KindOf(const std::string& text, IdentityKind otherwise);

/// Whether @p text, which is said to be of @p kind, has the form of one.
bool HasForm(const std::string& text, IdentityKind kind);

/// The identity itself, without regard to how it is written: equal for two ways to write it.
std::string Canonical(const std::string& text, IdentityKind kind);
