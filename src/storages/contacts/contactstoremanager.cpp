// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstoremanager.h"

#include "application/base/logging.h"

#include <QCoreApplication>
#include <QDir>

QTCONTACTS_USE_NAMESPACE

namespace {

const char engineName[] = "org.plover.contacts.sqlite";

/** An installed tree works wherever it is put, so plugins that came with it stand in no path that Qt knows.
 */
void addPluginFolder()
{
    const QString folder =
        QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QStringLiteral(FENNEL_PLUGIN_FOLDER));
    if (QDir(folder).exists())
        QCoreApplication::addLibraryPath(QDir::cleanPath(folder));
}

} // namespace

QContactManager *ContactStoreManager::create(QObject *parent)
{
    static const bool pluginFolderAdded = (addPluginFolder(), true);
    Q_UNUSED(pluginFolderAdded)
    // The engine warns where it is not told.
    const QMap<QString, QString> parameters { { QStringLiteral("mergePresenceChanges"),
        QStringLiteral("false") } };
    const QString uri = QContactManager::buildUri(QLatin1String(engineName), parameters);
    std::unique_ptr<QContactManager> manager(QContactManager::fromUri(uri, parent));
    // Instead of a missing engine one gets another that stores nothing.
    if (!manager || manager->managerName() != QLatin1String(engineName)) {
        qCCritical(eas()) << "There is no contact store: the engine" << engineName << "is missing";
        return nullptr;
    }
    // Such a manager would fail at each call for as long as it lives.
    if (manager->error() != QContactManager::NoError) {
        qCCritical(eas()) << "The contact store cannot be opened:" << manager->error();
        return nullptr;
    }
    return manager.release();
}
