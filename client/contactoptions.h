// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

#include <QCommandLineParser>

/**
 * What the user says of a contact: the options that adding and editing share. An option that is not given
 * leaves its field alone, an empty text removes it. A value on the stack of a command.
 */
class ContactOptions
{
public:
    explicit ContactOptions(QCommandLineParser &parser);

    /** False, after an error was printed, if an option cannot be understood. */
    bool apply(QtContacts::QContact &contact) const;
    bool saysSomething() const { return !mParser.optionNames().isEmpty(); }

private:
    void applyName(QtContacts::QContact &contact) const;
    void applyCompany(QtContacts::QContact &contact) const;
    void applyEmails(QtContacts::QContact &contact) const;
    void applyPhones(QtContacts::QContact &contact) const;
    bool applyBirthday(QtContacts::QContact &contact) const;

    QCommandLineParser &mParser;
};
