// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtContacts/QContactManager>

class QObject;

/** The way to the device's contact store. */
namespace ContactStoreManager {

/** A manager with the store's engine; null, with a log line, if its plugin is missing or the store cannot be
 * opened. */
QtContacts::QContactManager *create(QObject *parent);

} // namespace ContactStoreManager
