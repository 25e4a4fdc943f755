// SPDX-License-Identifier: LGPL-2.1-or-later
#include "extendedstorage.h"

#include "internal/changemarker.h"
#include "internal/pendingchanges.h"

#include <KCalendarCore/CalFormat>

#include <QDebug>
#include <QMap>

namespace mKCal {

using KCalendarCore::Incidence;

namespace {

const int shortestUid = 7;

} // namespace

class StorageData
{
public:
    QMap<QString, Notebook::Ptr> notebooks;
    QString defaultNotebook;
    QList<ExtendedStorageObserver *> observers;
    PendingChanges pending;
    std::unique_ptr<ChangeMarker> marker;
    bool validateNotebooks = true;
    bool loading = false;
};

ExtendedStorage::ExtendedStorage(const ExtendedCalendar::Ptr &calendar, bool validateNotebooks)
    : CalStorage(calendar)
    , d(std::make_unique<StorageData>())
{
    d->validateNotebooks = validateNotebooks;
    calendar->registerObserver(static_cast<KCalendarCore::Calendar::CalendarObserver *>(this));
    connect(calendar.data(), &ExtendedCalendar::aboutToClose, this, &ExtendedStorage::onCalendarAboutToClose);
    registerObserver(calendar.data());
}

ExtendedStorage::~ExtendedStorage()
{
    calendar()->unregisterObserver(static_cast<KCalendarCore::Calendar::CalendarObserver *>(this));
}

bool ExtendedStorage::close()
{
    if (d->marker) {
        // It may be its own signal that ends here.
        d->marker->disconnect(this);
        d->marker.release()->deleteLater();
    }
    d->notebooks.clear();
    d->defaultNotebook.clear();
    d->pending.clear();
    return true;
}

void ExtendedStorage::registerObserver(ExtendedStorageObserver *observer)
{
    if (observer && !d->observers.contains(observer))
        d->observers.append(observer);
}

void ExtendedStorage::unregisterObserver(ExtendedStorageObserver *observer)
{
    d->observers.removeAll(observer);
}

bool ExtendedStorage::addNotebook(const Notebook::Ptr &notebook)
{
    if (!isOpen() || !notebook || d->notebooks.contains(notebook->uid()))
        return false;
    if (notebook->uid().size() < shortestUid)
        notebook->setUid(KCalendarCore::CalFormat::createUniqueId());
    notebook->setCreationDate(QDateTime::currentDateTimeUtc());
    if (!notebook->isRunTimeOnly()) {
        if (!insertNotebook(notebook))
            return false;
        signalCommit();
    }
    d->notebooks.insert(notebook->uid(), notebook);
    return calendar()->addNotebook(notebook->uid(), notebook->isVisible());
}

bool ExtendedStorage::updateNotebook(const Notebook::Ptr &notebook)
{
    if (!isOpen() || !notebook || d->notebooks.value(notebook->uid()) != notebook)
        return false;
    if (!notebook->isRunTimeOnly()) {
        if (!modifyNotebook(notebook))
            return false;
        signalCommit();
    }
    return calendar()->updateNotebook(notebook->uid(), notebook->isVisible());
}

bool ExtendedStorage::deleteNotebook(const Notebook::Ptr &notebook)
{
    if (!isOpen() || !notebook || d->notebooks.value(notebook->uid()) != notebook)
        return false;
    const QString uid = notebook->uid();
    if (!notebook->isRunTimeOnly()) {
        if (!eraseNotebook(notebook))
            return false;
        signalCommit();
    }
    // The rows are gone already, so what happens to the objects in memory is nothing to be saved.
    d->loading = true;
    const Incidence::List incidences = calendar()->incidences(uid);
    for (const Incidence::Ptr &incidence : incidences)
        calendar()->deleteIncidence(incidence);
    d->loading = false;
    for (const Incidence::Ptr &incidence : incidences)
        d->pending.forget(incidence);
    d->notebooks.remove(uid);
    if (d->defaultNotebook == uid)
        d->defaultNotebook.clear();
    return calendar()->deleteNotebook(uid);
}

Notebook::Ptr ExtendedStorage::notebook(const QString &uid)
{
    return d->notebooks.value(uid);
}

Notebook::List ExtendedStorage::notebooks()
{
    return d->notebooks.values();
}

Notebook::Ptr ExtendedStorage::defaultNotebook()
{
    return d->notebooks.value(d->defaultNotebook);
}

bool ExtendedStorage::setDefaultNotebook(const Notebook::Ptr &notebook)
{
    if (!isOpen() || !notebook)
        return false;
    if (d->notebooks.value(notebook->uid()) != notebook && !addNotebook(notebook))
        return false;
    if (!storeDefaultNotebook(notebook->uid()))
        return false;
    signalCommit();
    d->defaultNotebook = notebook->uid();
    return calendar()->setDefaultNotebook(notebook->uid());
}

bool ExtendedStorage::isValidNotebook(const QString &notebookUid)
{
    if (!d->validateNotebooks)
        return true;
    const Notebook::Ptr notebook = d->notebooks.value(notebookUid);
    return notebook && !notebook->isReadOnly() && !notebook->isRunTimeOnly();
}

void ExtendedStorage::calendarModified(bool modified, KCalendarCore::Calendar *calendar)
{
    Q_UNUSED(modified)
    Q_UNUSED(calendar)
}

void ExtendedStorage::calendarIncidenceAdded(const Incidence::Ptr &incidence)
{
    if (d->loading)
        return;
    if (incidence->uid().size() < shortestUid) {
        qWarning() << "the uid" << incidence->uid() << "is too short and is replaced";
        incidence->setUid(KCalendarCore::CalFormat::createUniqueId());
    }
    d->pending.add(incidence);
}

void ExtendedStorage::calendarIncidenceChanged(const Incidence::Ptr &incidence)
{
    if (!d->loading)
        d->pending.change(incidence);
}

void ExtendedStorage::calendarIncidenceDeleted(
    const Incidence::Ptr &incidence, const KCalendarCore::Calendar *calendar)
{
    Q_UNUSED(calendar)
    if (!d->loading)
        d->pending.remove(incidence);
}

ExtendedCalendar *ExtendedStorage::extendedCalendar() const
{
    return static_cast<ExtendedCalendar *>(calendar().data());
}

PendingChanges &ExtendedStorage::pendingChanges()
{
    return d->pending;
}

void ExtendedStorage::adopt(const Incidence::Ptr &incidence, const QString &notebookUid)
{
    d->loading = true;
    const QDateTime modified = incidence->lastModified();
    if (calendar()->addIncidence(incidence)) {
        calendar()->setNotebook(incidence, notebookUid);
        incidence->setLastModified(modified);
        incidence->resetDirtyFields();
    }
    d->loading = false;
}

bool ExtendedStorage::reloadNotebooks()
{
    Notebook::List stored;
    QString defaultUid;
    if (!readNotebooks(&stored, &defaultUid))
        return false;
    QMap<QString, Notebook::Ptr> notebooks;
    for (const Notebook::Ptr &notebook : qAsConst(stored)) {
        notebooks.insert(notebook->uid(), notebook);
        const bool known = calendar()->hasValidNotebook(notebook->uid());
        const bool told = known ? calendar()->updateNotebook(notebook->uid(), notebook->isVisible())
                                : calendar()->addNotebook(notebook->uid(), notebook->isVisible());
        if (!told)
            qWarning() << "the calendar does not take the notebook" << notebook->uid();
    }
    for (const Notebook::Ptr &old : qAsConst(d->notebooks)) {
        if (old->isRunTimeOnly())
            notebooks.insert(old->uid(), old);
        else if (!notebooks.contains(old->uid()) && !calendar()->deleteNotebook(old->uid()))
            qWarning() << "the calendar keeps the notebook" << old->uid();
    }
    d->notebooks = notebooks;
    d->defaultNotebook = defaultUid;
    return defaultUid.isEmpty() || calendar()->setDefaultNotebook(defaultUid);
}

void ExtendedStorage::watchMarker(const QString &path)
{
    d->marker = std::make_unique<ChangeMarker>(path);
    connect(d->marker.get(), &ChangeMarker::changed, this, &ExtendedStorage::onMarkerChanged);
}

void ExtendedStorage::signalCommit()
{
    if (d->marker)
        d->marker->touch();
}

void ExtendedStorage::notifyFinished(bool error, const QString &info)
{
    const QList<ExtendedStorageObserver *> observers = d->observers;
    for (ExtendedStorageObserver *observer : observers) {
        if (d->observers.contains(observer))
            observer->storageFinished(this, error, info);
    }
}

void ExtendedStorage::onMarkerChanged()
{
    if (!reloadNotebooks())
        qWarning() << "the notebooks could not be read again";
    const QString path = d->marker->path();
    const QList<ExtendedStorageObserver *> observers = d->observers;
    for (ExtendedStorageObserver *observer : observers) {
        if (d->observers.contains(observer))
            observer->storageModified(this, path);
    }
}

void ExtendedStorage::onCalendarAboutToClose()
{
    if (d->pending.count() > 0)
        qWarning() << "the calendar was closed before" << d->pending.count() << "changes were saved";
    d->pending.clear();
}

} // namespace mKCal
