// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

struct WBXMLLangEntry;
struct WBXMLTagEntry;

/**
 * The tag table of the whole project: the library's rows and those that the library lacks.
 *
 * Encoder, parser and log go through it, so all of them know the same tags. Built at first use, constant from
 * then on; any thread may read it.
 */
namespace WbxmlTable {

/** The library's number of the language; its name there differs between releases. */
constexpr int Language = 2401;

/** The language with the extended table, as a list of one that the library's parser accepts; null if the
 * library does not know the language. */
const WBXMLLangEntry *language();

/** The row with both numbers, or null. */
const WBXMLTagEntry *tagEntry(uint codePage, uint token);

} // namespace WbxmlTable
