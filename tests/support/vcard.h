// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/** A vCard 3.0 as its properties, in their order; as much of the format as address books use. */
class VCard
{
public:
    struct Property
    {
        QString name;
        /** Types of all parameters, in upper case: "WORK", "FAX", "ENCODING=B". */
        QStringList parameters;
        /** Still escaped. */
        QString value;

        bool is(const QString &type) const { return parameters.contains(type); }
        QString text() const;
        /** Parts between semicolons, each without its escapes. */
        QStringList parts() const;
        /** Entries between commas. */
        QStringList list() const;
    };

    VCard() = default;
    explicit VCard(const QString &text);

    bool isEmpty() const { return mProperties.isEmpty(); }
    QList<Property> all(const QString &name) const;
    /** The first one of this name, empty without one. */
    Property first(const QString &name) const;
    QString uid() const { return first(QStringLiteral("UID")).text(); }

    /** Replaces all of this name; the value is escaped already. */
    void set(const QString &name, const QString &value, const QStringList &parameters = {});
    QByteArray toBytes() const;

private:
    QList<Property> mProperties;
};
