// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/contact.h"

#include <QMap>

namespace Simulator {

/**
 * An entry of the global address list. A value type, for tests as well: they fill one and add it.
 *
 * Texts go by their element without the code page: "DisplayName", "EmailAddress", "MobilePhone".
 */
class Person
{
public:
    /** The elements with a text, in the order of the published schema. */
    static const QStringList &textFields();
    /** A user of this server: the name is also the alias, and the address is NAME@example.com. */
    static Person user(const QString &name);
    static Person fromContact(const Contact &contact);

    QString text(const QString &field) const { return mTexts.value(field); }
    /** The field has to be one of textFields(). */
    Person &setText(const QString &field, const QString &text);
    /** The bytes of the image, not in Base64. */
    const QByteArray &picture() const { return mPicture; }
    Person &setPicture(const QByteArray &picture);

    /** Whether each of the words begins a part of a name, or the address. */
    bool matches(const QStringList &words) const;

private:
    QMap<QString, QString> mTexts;
    QByteArray mPicture;
};

} // namespace Simulator
