// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <optional>

namespace Simulator {

/** A tag's place in the published token table. */
struct WbxmlToken
{
    quint8 page;
    quint8 token;
    const char *tag;
    quint8 versions; ///< one bit a protocol version, 12.0 the lowest
};

/**
 * The published token table: all tags of all code pages.
 *
 * The simulator has a table of its own so that a wrong number in the product's cannot hide behind the same
 * wrong number here. Tags go by names like "AirSync:Sync"; the part before the colon is the code page's name
 * space.
 */
namespace WbxmlTokens {

const WbxmlToken *begin();
const WbxmlToken *end();
/** Name space of the code page; empty if there is no such page. */
QString pageName(int page);
std::optional<WbxmlToken> find(const QString &qualifiedName);
/** "Page:Tag", or an empty text for a token that is not in the table. */
QString name(quint8 page, quint8 token);
/** Whether the tag exists at @p version (0x1200 to 0x1601). */
bool existsAt(const WbxmlToken &token, int version);

} // namespace WbxmlTokens
} // namespace Simulator
