// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/detailcodec.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactBirthday>

#include <QDataStream>
#include <QDateTime>
#include <QIODevice>

QTCONTACTS_USE_NAMESPACE

namespace {

const QContactDetail::DetailType singleTypes[] = { QContactDetail::TypeGuid, QContactDetail::TypeSyncTarget,
    QContactDetail::TypeBirthday, QContactDetail::TypeGender };

void registerValueTypes()
{
    static const bool done = (qRegisterMetaTypeStreamOperators<QList<int>>("QList<int>"), true);
    Q_UNUSED(done)
}

bool canBeKept(const QVariant &value)
{
    return value.userType() < QMetaType::User || value.userType() == qMetaTypeId<QList<int>>();
}

/** These two are kept as dates, whatever time of the day came with them. */
QMap<int, QVariant> keptValues(const QContactDetail &detail)
{
    QMap<int, QVariant> values = detail.values();
    const int field = detail.type() == QContactDetail::TypeAnniversary
        ? int(QContactAnniversary::FieldOriginalDate)
        : detail.type() == QContactDetail::TypeBirthday ? int(QContactBirthday::FieldBirthday)
                                                        : -1;
    const auto date = values.find(field);
    if (date != values.end() && date->type() == QVariant::DateTime)
        *date = date->toDateTime().date();
    return values;
}

} // namespace

bool DetailCodec::isMadeUp(QContactDetail::DetailType type)
{
    return type == QContactDetail::TypeDisplayLabel || type == QContactDetail::TypeType
        || type == QContactDetail::TypeTimestamp || type == QContactStatusFlags::Type;
}

QContactManager::Error DetailCodec::check(const QContact &contact)
{
    for (const QContactDetail::DetailType type : singleTypes) {
        if (contact.details(type).size() > 1)
            return QContactManager::LimitReachedError;
    }
    if (qEnvironmentVariableIsSet("CONTACTS_ONE_NAME")
        && contact.details(QContactDetail::TypeName).size() > 1)
        return QContactManager::LimitReachedError;
    const QList<QContactDetail> details = contact.details();
    for (const QContactDetail &detail : details) {
        const QMap<int, QVariant> values = detail.values();
        for (const QVariant &value : values) {
            if (!canBeKept(value))
                return QContactManager::InvalidDetailError;
        }
    }
    return QContactManager::NoError;
}

QByteArray DetailCodec::encode(const QContact &contact)
{
    registerValueTypes();
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    const QList<QContactDetail> details = contact.details();
    for (const QContactDetail &detail : details) {
        if (!isMadeUp(detail.type()) && !detail.isEmpty())
            stream << qint32(detail.type()) << keptValues(detail);
    }
    return bytes;
}

void DetailCodec::decode(const QByteArray &bytes, QContact *contact)
{
    registerValueTypes();
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    while (!stream.atEnd()) {
        qint32 type = 0;
        QMap<int, QVariant> values;
        stream >> type >> values;
        if (stream.status() != QDataStream::Ok)
            return;
        QContactDetail detail(static_cast<QContactDetail::DetailType>(type));
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            detail.setValue(it.key(), it.value());
        contact->saveDetail(&detail, QContact::IgnoreAccessConstraints);
    }
}
