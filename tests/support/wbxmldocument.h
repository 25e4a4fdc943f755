// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmltokens.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/**
 * One element of a document, written as a tree:
 *
 *     document(node(AirSync::Sync, { node(AirSync::Status, "4") }))
 */
struct WbxmlNode
{
    Wbxml::Token tag { 0, 0 };
    QVector<WbxmlNode> children;
    QString text;
    QByteArray opaque;
};

namespace WbxmlDocument {

WbxmlNode node(Wbxml::Token tag, const QVector<WbxmlNode> &children = {});
WbxmlNode node(Wbxml::Token tag, const QString &text);
WbxmlNode node(Wbxml::Token tag, const char *text);
/** An element whose content is opaque bytes. */
WbxmlNode opaque(Wbxml::Token tag, const QByteArray &bytes);

/** The bytes of a document with this root. */
QByteArray document(const WbxmlNode &root);

/**
 * A document in one line, for comparing: "Sync(SyncKey=0,Commands(Add(...)))". Elements go by the names that
 * the codec knows, those without content by the name alone; opaque bytes and text look the same. Empty if the
 * bytes are no sound document.
 */
QString outline(const QByteArray &bytes);

} // namespace WbxmlDocument
