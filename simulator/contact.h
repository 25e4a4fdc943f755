// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/item.h"

#include <QMap>
#include <QStringList>

namespace Simulator {

/**
 * A contact as the server keeps it. A value type, for tests as well: they fill one and add it, or edit the
 * one that is there.
 *
 * Texts go by their element without the code page: "FirstName", "Email1Address", "NickName". Dates are texts
 * as well, in UTC with dashes.
 */
class Contact
{
public:
    /** Elements with a text, of both code pages; lists, picture and note are not among them. */
    static const QStringList &textFields();

    QString text(const QString &field) const { return mTexts.value(field); }
    const QMap<QString, QString> &texts() const { return mTexts; }
    /** An empty text removes the field. The field has to be one of textFields(). */
    Contact &setText(const QString &field, const QString &text);
    /** "Birthday" or "Anniversary", which are at midnight UTC on the wire. */
    Contact &setDate(const QString &field, const QDate &date);

    const QStringList &categories() const { return mCategories; }
    Contact &setCategories(const QStringList &categories);
    const QStringList &children() const { return mChildren; }
    Contact &setChildren(const QStringList &children);
    /** The bytes of the image, not in Base64. */
    const QByteArray &picture() const { return mPicture; }
    Contact &setPicture(const QByteArray &picture);
    /** Plain text. */
    const QString &note() const { return mNote; }
    Contact &setNote(const QString &note);

    bool operator==(const Contact &other) const;
    bool operator!=(const Contact &other) const { return !(*this == other); }

private:
    QMap<QString, QString> mTexts;
    QStringList mCategories;
    QStringList mChildren;
    QByteArray mPicture;
    QString mNote;
};

} // namespace Simulator
