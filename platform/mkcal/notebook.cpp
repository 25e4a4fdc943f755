// SPDX-License-Identifier: LGPL-2.1-or-later
#include "notebook.h"

#include <QMap>
#include <QSharedData>

namespace mKCal {

class NotebookData : public QSharedData
{
public:
    QString uid;
    QString name;
    QString description;
    QString color;
    QString pluginName;
    QString account;
    QString syncProfile;
    QDateTime syncDate;
    QDateTime modifiedDate;
    QDateTime creationDate;
    QMap<QByteArray, QString> customProperties;
    int attachmentSize = -1;
    bool isShared = false;
    bool isMaster = true;
    bool isSynchronized = false;
    bool isReadOnly = false;
    bool isVisible = true;
    bool isRunTimeOnly = false;
    bool isShareable = false;
    bool eventsAllowed = true;
    bool journalsAllowed = true;
    bool todosAllowed = true;

    template <typename Value> void change(Value NotebookData::*field, const Value &value)
    {
        this->*field = value;
        modifiedDate = QDateTime::currentDateTimeUtc();
    }
};

Notebook::Notebook()
    : d(new NotebookData)
{
}

Notebook::Notebook(const QString &name, const QString &description)
    : d(new NotebookData)
{
    d->name = name;
    d->description = description;
}

Notebook::Notebook(const QString &uid, const QString &name, const QString &description, const QString &color,
    bool isShared, bool isMaster, bool isSynchronized, bool isReadOnly, bool isVisible)
    : d(new NotebookData)
{
    d->uid = uid;
    d->name = name;
    d->description = description;
    d->color = color;
    d->isShared = isShared;
    d->isMaster = isMaster;
    d->isSynchronized = isSynchronized;
    d->isReadOnly = isReadOnly;
    d->isVisible = isVisible;
}

Notebook::Notebook(const Notebook &other) = default;
Notebook &Notebook::operator=(const Notebook &other) = default;
Notebook::~Notebook() = default;

QString Notebook::uid() const
{
    return d->uid;
}

void Notebook::setUid(const QString &uid)
{
    d->change(&NotebookData::uid, uid);
}

QString Notebook::name() const
{
    return d->name;
}

void Notebook::setName(const QString &name)
{
    d->change(&NotebookData::name, name);
}

QString Notebook::description() const
{
    return d->description;
}

void Notebook::setDescription(const QString &description)
{
    d->change(&NotebookData::description, description);
}

QString Notebook::color() const
{
    return d->color;
}

void Notebook::setColor(const QString &color)
{
    d->change(&NotebookData::color, color);
}

bool Notebook::isShared() const
{
    return d->isShared;
}

void Notebook::setIsShared(bool isShared)
{
    d->change(&NotebookData::isShared, isShared);
}

bool Notebook::isMaster() const
{
    return d->isMaster;
}

void Notebook::setIsMaster(bool isMaster)
{
    d->change(&NotebookData::isMaster, isMaster);
}

bool Notebook::isSynchronized() const
{
    return d->isSynchronized;
}

void Notebook::setIsSynchronized(bool isSynchronized)
{
    d->change(&NotebookData::isSynchronized, isSynchronized);
}

bool Notebook::isReadOnly() const
{
    return d->isReadOnly;
}

void Notebook::setIsReadOnly(bool isReadOnly)
{
    d->change(&NotebookData::isReadOnly, isReadOnly);
}

bool Notebook::isVisible() const
{
    return d->isVisible;
}

void Notebook::setIsVisible(bool isVisible)
{
    d->change(&NotebookData::isVisible, isVisible);
}

bool Notebook::isRunTimeOnly() const
{
    return d->isRunTimeOnly;
}

void Notebook::setRunTimeOnly(bool isRunTimeOnly)
{
    d->change(&NotebookData::isRunTimeOnly, isRunTimeOnly);
}

bool Notebook::isShareable() const
{
    return d->isShareable;
}

void Notebook::setIsShareable(bool isShareable)
{
    d->change(&NotebookData::isShareable, isShareable);
}

bool Notebook::eventsAllowed() const
{
    return d->eventsAllowed;
}

void Notebook::setEventsAllowed(bool allowed)
{
    d->change(&NotebookData::eventsAllowed, allowed);
}

bool Notebook::journalsAllowed() const
{
    return d->journalsAllowed;
}

void Notebook::setJournalsAllowed(bool allowed)
{
    d->change(&NotebookData::journalsAllowed, allowed);
}

bool Notebook::todosAllowed() const
{
    return d->todosAllowed;
}

void Notebook::setTodosAllowed(bool allowed)
{
    d->change(&NotebookData::todosAllowed, allowed);
}

bool Notebook::incidenceAllowed(KCalendarCore::Incidence::Ptr incidence) const
{
    if (!incidence)
        return false;
    switch (incidence->type()) {
    case KCalendarCore::IncidenceBase::TypeEvent:
        return d->eventsAllowed;
    case KCalendarCore::IncidenceBase::TypeTodo:
        return d->todosAllowed;
    case KCalendarCore::IncidenceBase::TypeJournal:
        return d->journalsAllowed;
    default:
        return false;
    }
}

QString Notebook::pluginName() const
{
    return d->pluginName;
}

void Notebook::setPluginName(const QString &pluginName)
{
    d->change(&NotebookData::pluginName, pluginName);
}

QString Notebook::account() const
{
    return d->account;
}

void Notebook::setAccount(const QString &account)
{
    d->change(&NotebookData::account, account);
}

QString Notebook::syncProfile() const
{
    return d->syncProfile;
}

void Notebook::setSyncProfile(const QString &syncProfile)
{
    d->change(&NotebookData::syncProfile, syncProfile);
}

int Notebook::attachmentSize() const
{
    return d->attachmentSize;
}

void Notebook::setAttachmentSize(int size)
{
    d->change(&NotebookData::attachmentSize, size);
}

QDateTime Notebook::syncDate() const
{
    return d->syncDate;
}

void Notebook::setSyncDate(const QDateTime &date)
{
    d->syncDate = date;
}

QDateTime Notebook::modifiedDate() const
{
    return d->modifiedDate;
}

void Notebook::setModifiedDate(const QDateTime &date)
{
    d->modifiedDate = date;
}

QDateTime Notebook::creationDate() const
{
    return d->creationDate;
}

void Notebook::setCreationDate(const QDateTime &date)
{
    d->creationDate = date;
}

void Notebook::setCustomProperty(const QByteArray &key, const QString &value)
{
    if (value.isEmpty())
        d->customProperties.remove(key);
    else
        d->customProperties.insert(key, value);
    d->modifiedDate = QDateTime::currentDateTimeUtc();
}

QString Notebook::customProperty(const QByteArray &key, const QString &defaultValue) const
{
    return d->customProperties.value(key, defaultValue);
}

QList<QByteArray> Notebook::customPropertyKeys() const
{
    return d->customProperties.keys();
}

} // namespace mKCal
