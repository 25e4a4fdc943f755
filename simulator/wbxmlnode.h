// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <initializer_list>

namespace Simulator {

/**
 * One element of a document, with its text or its children.
 *
 * Names carry the name space of their code page: "AirSync:Sync". Where a name without one is given, it is
 * taken from the parent's name space, so that a path reads "Collections/Collection/SyncKey". A value type
 * without locks.
 */
class WbxmlNode
{
public:
    WbxmlNode() = default;
    explicit WbxmlNode(const QString &name, const QString &text = QString());
    WbxmlNode(const QString &name, const QVector<WbxmlNode> &children);
    /** An element whose content goes over the wire as opaque bytes. */
    static WbxmlNode opaque(const QString &name, const QByteArray &bytes);

    /**
     * Reads an XML text whose name spaces are the code page names, as in
     * `<Sync xmlns="AirSync"><Status>3</Status></Sync>`. White space between elements does not count. An
     * attribute `encoding="opaque"` makes the text opaque bytes, `encoding="base64"` opaque bytes given in
     * Base64. Returns a null node and sets @p error when the text does not fit.
     */
    static WbxmlNode fromXml(const QString &xml, QString *error = nullptr);
    /** The document as XML; opaque bytes appear as text if they are printable UTF-8, otherwise in Base64. */
    QString toXml(bool indented = true) const;

    bool isNull() const { return mName.isEmpty(); }
    const QString &name() const { return mName; }
    QString page() const;
    QString tag() const;

    QString text() const;
    void setText(const QString &text);
    bool isOpaque() const { return mIsOpaque; }
    const QByteArray &opaqueBytes() const { return mOpaque; }
    /** The content as bytes, whichever way it came. */
    QByteArray bytes() const;

    const QVector<WbxmlNode> &children() const { return mChildren; }
    QVector<WbxmlNode> &children() { return mChildren; }

    /** Adds a child and returns it. The reference holds until the next child is added. */
    WbxmlNode &append(const WbxmlNode &child);
    WbxmlNode &append(const QString &name, const QString &text = QString());
    WbxmlNode &append(const QString &name, int number);

    /** First element at the path below this one, or a null node. */
    WbxmlNode at(const QString &path) const;
    /** All elements at the path. */
    QVector<WbxmlNode> all(const QString &path) const;
    bool has(const QString &path) const { return !at(path).isNull(); }
    /** Text of the first element at the path; empty if there is none. */
    QString text(const QString &path) const { return at(path).text(); }
    /** First element at the path for changing, or null. */
    WbxmlNode *find(const QString &path);
    void removeAll(const QString &name);

    bool operator==(const WbxmlNode &other) const;
    bool operator!=(const WbxmlNode &other) const { return !(*this == other); }

private:
    QString qualified(const QString &name) const;

    QString mName;
    QString mText;
    QByteArray mOpaque;
    bool mIsOpaque = false;
    QVector<WbxmlNode> mChildren;
};

} // namespace Simulator
