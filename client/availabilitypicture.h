// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

/** Who is free when, as a picture in text and for programs. A value type. */
class AvailabilityPicture
{
public:
    struct Person
    {
        QString email;
        QString name;
        /** A digit for each half hour from the start on; people of whom nothing is known have none. */
        QString states;
    };

    AvailabilityPicture(const QDateTime &start, const QDateTime &end, const QList<Person> &people)
        : mStart(start)
        , mEnd(end)
        , mPeople(people)
    {
    }

    /** A block for each day: the hours in the zone of the device, a line for each person; then the legend. */
    QStringList lines() const;
    /** One object a person, with the stretches of time that are alike. */
    QJsonArray describe() const;

private:
    int slotCount() const;
    QDateTime slotStart(int slot) const;
    /** The first half hour of the day after that one. */
    int nextDay(int slot) const;
    QString hours(int first, int last) const;
    static QString label(const Person &person);

    QDateTime mStart;
    QDateTime mEnd;
    QList<Person> mPeople;
};
