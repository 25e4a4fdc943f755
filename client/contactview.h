// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContact>

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/** Contacts as the command line shows them. */
namespace ContactView {

/** What a person would call the contact. */
QString name(const QtContacts::QContact &contact);
/** One line of a list. */
QJsonObject describe(const QtContacts::QContact &contact);
/** With everything that the device knows. */
QJsonObject describeWhole(const QtContacts::QContact &contact);
/** Whether a name, an address or a number holds the text. */
bool matches(const QtContacts::QContact &contact, const QString &text);

QByteArray toVCard(const QList<QtContacts::QContact> &contacts);

} // namespace ContactView
