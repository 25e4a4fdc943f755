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

    /** False, after an error was printed, if an option cannot be understood; the contact may be changed in
     * part then and is not to be saved. */
    bool apply(QtContacts::QContact &contact) const;
    bool saysSomething() const;

private:
    void applyName(QtContacts::QContact &contact) const;
    void applyTexts(QtContacts::QContact &contact) const;
    bool applyEmails(QtContacts::QContact &contact) const;
    void applyPhones(QtContacts::QContact &contact) const;
    bool applyDates(QtContacts::QContact &contact) const;
    void applyCategories(QtContacts::QContact &contact) const;
    bool applyPicture(QtContacts::QContact &contact) const;

    QCommandLineParser &mParser;
    /** The options of the parser that are this class' own. */
    QStringList mNames;
};
