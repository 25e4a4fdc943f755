// SPDX-License-Identifier: LGPL-2.1-or-later
#include "plugin.h"

#include "internal/contactids.h"
#include "internal/contactsengine.h"

#include <memory>

QTCONTACTS_USE_NAMESPACE

namespace {

/** Where the data is, asked anew for each engine. */
QString dataFolder()
{
    const QString named = qEnvironmentVariable("CONTACTS_DATA");
    if (!named.isEmpty())
        return named;
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    return (data.isEmpty() ? qEnvironmentVariable("HOME") + QLatin1String("/.local/share") : data)
        + QLatin1String("/fennel-contactstore");
}

} // namespace

// Of the parameters none makes a difference here: there are no presences to merge, no private contacts, and
// tests have a folder of their own.
QContactManagerEngine *ContactsEngineFactory::engine(
    const QMap<QString, QString> &parameters, QContactManager::Error *error)
{
    auto engine = std::make_unique<ContactsEngine>(parameters);
    *error = engine->open(dataFolder()) ? QContactManager::NoError : QContactManager::UnspecifiedError;
    // An engine without its data fails at each call. QtContacts enters a factory that gives none once more,
    // and deletes it twice when the process ends.
    return engine.release();
}

QString ContactsEngineFactory::managerName() const
{
    return QString::fromLatin1(ContactIds::managerName);
}
