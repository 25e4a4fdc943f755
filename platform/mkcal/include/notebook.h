// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mkcalexport.h>

#include <KCalendarCore/Incidence>

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QSharedDataPointer>
#include <QSharedPointer>
#include <QString>

namespace mKCal {

class NotebookData;

/**
 * One calendar of the device: its name and colour, whose it is and what it may hold. A value; the storage
 * keeps the object that was added to it and accepts changes of that very object.
 */
class MKCAL_EXPORT Notebook
{
public:
    typedef QSharedPointer<Notebook> Ptr;
    typedef QSharedPointer<const Notebook> ConstPtr;
    typedef QList<Ptr> List;

    Notebook();
    Notebook(const QString &name, const QString &description);
    Notebook(const QString &uid, const QString &name, const QString &description, const QString &color,
        bool isShared, bool isMaster, bool isSynchronized, bool isReadOnly, bool isVisible);
    Notebook(const Notebook &other);
    Notebook &operator=(const Notebook &other);
    ~Notebook();

    QString uid() const;
    void setUid(const QString &uid);
    QString name() const;
    void setName(const QString &name);
    QString description() const;
    void setDescription(const QString &description);
    /** Of the form "#RRGGBB". */
    QString color() const;
    void setColor(const QString &color);

    bool isShared() const;
    void setIsShared(bool isShared);
    bool isMaster() const;
    void setIsMaster(bool isMaster);
    bool isSynchronized() const;
    void setIsSynchronized(bool isSynchronized);
    bool isReadOnly() const;
    void setIsReadOnly(bool isReadOnly);
    bool isVisible() const;
    void setIsVisible(bool isVisible);
    /** True for a notebook that no storage keeps. */
    bool isRunTimeOnly() const;
    void setRunTimeOnly(bool isRunTimeOnly);
    bool isShareable() const;
    void setIsShareable(bool isShareable);

    bool eventsAllowed() const;
    void setEventsAllowed(bool allowed);
    bool journalsAllowed() const;
    void setJournalsAllowed(bool allowed);
    bool todosAllowed() const;
    void setTodosAllowed(bool allowed);
    bool incidenceAllowed(KCalendarCore::Incidence::Ptr incidence) const;

    QString pluginName() const;
    void setPluginName(const QString &pluginName);
    QString account() const;
    void setAccount(const QString &account);
    QString syncProfile() const;
    void setSyncProfile(const QString &syncProfile);
    /** In bytes; -1 for no limit. */
    int attachmentSize() const;
    void setAttachmentSize(int size);

    /** The dates are kept in whole seconds, in UTC. */
    QDateTime syncDate() const;
    void setSyncDate(const QDateTime &date);
    QDateTime modifiedDate() const;
    void setModifiedDate(const QDateTime &date);
    QDateTime creationDate() const;
    void setCreationDate(const QDateTime &date);

    /** An empty value removes the property. */
    void setCustomProperty(const QByteArray &key, const QString &value);
    QString customProperty(const QByteArray &key, const QString &defaultValue = QString()) const;
    QList<QByteArray> customPropertyKeys() const;

private:
    QSharedDataPointer<NotebookData> d;
};

} // namespace mKCal
