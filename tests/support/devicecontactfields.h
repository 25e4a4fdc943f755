// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

#include <QString>
#include <QVector>

namespace Simulator {
class Contact;
}

/**
 * Fields of a contact that both sides can edit, each as the simulated Exchange names it and as a user of the
 * device finds it. Reads the device's details by itself, so that a mistake of the engine shows.
 */
struct DeviceContactField
{
    /** As the server names it. */
    QString name;
    QString (*get)(const QtContacts::QContact &contact);
    /** An empty text removes the field. */
    void (*set)(QtContacts::QContact &contact, const QString &text);

    /** The server's text in the form of the device. */
    QString ofServer(const Simulator::Contact &contact) const;
    /** A text of the field's kind, another one for another number. */
    QString sample(int number) const;

    static const QVector<DeviceContactField> &all();
    /** "Email1Address=a@b.org|IMAddress=..", for both sides. */
    static QString line(const QtContacts::QContact &contact);
    static QString line(const Simulator::Contact &contact);
};
