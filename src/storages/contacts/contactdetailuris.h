// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

/**
 * The URIs of details that the protocol keeps in fields of their own, beside a plain one of the same type.
 * The command line reads and writes them too.
 */
namespace ContactDetailUris {

constexpr char secondEmail[] = "urn:as:contact:EmailAddress2";
constexpr char thirdEmail[] = "urn:as:contact:EmailAddress3";
constexpr char secondMessaging[] = "urn:as:contact:ImAddress2";
constexpr char thirdMessaging[] = "urn:as:contact:ImAddress3";
/** The name that tells how a name is read. */
constexpr char yomiName[] = "urn:as:contact:YomiName";
constexpr char yomiCompany[] = "urn:as:contact:YomiCompanyName";
constexpr char alias[] = "urn:as:contact:Alias";

} // namespace ContactDetailUris
