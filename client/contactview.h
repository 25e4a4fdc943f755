// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/table.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactName>

#include <QJsonObject>
#include <QList>
#include <QString>

/** Contacts as the command line shows them. */
namespace ContactView {

/** First, middle and last name and suffix, as far as they are there. */
QString fullName(const QtContacts::QContactName &name);
/** What a person would call the contact: the full name, else the company, else an address. */
QString name(const QtContacts::QContact &contact);
/** One line of a list. */
QJsonObject describe(const QtContacts::QContact &contact);
/** With everything that the device knows; what is not there is an empty text or list. */
QJsonObject describeWhole(const QtContacts::QContact &contact);
/** Whether a name, an address or a number holds the text. */
bool matches(const QtContacts::QContact &contact, const QString &text);

/** What describeWhole() tells, in the order that people read it. */
const Columns &columns();

} // namespace ContactView
