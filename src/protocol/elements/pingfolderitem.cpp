// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/pingfolderitem.h"

#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <iterator>

using namespace Wbxml;

namespace {

/** By ClassId. */
constexpr QLatin1String classNames[] = { ProtocolUtils::ClassEmail, ProtocolUtils::ClassCalendar,
    ProtocolUtils::ClassContacts, ProtocolUtils::ClassTasks };
static_assert(std::size(classNames) == PingFolderItem::Tasks + 1, "one name a class");

} // namespace

PingFolderItem::PingFolderItem(QObject *parent)
    : AsProtocolItem(parent)
{
}

PingFolderItem::PingFolderItem(const QString &id, ClassId classId, QObject *parent)
    : AsProtocolItem(parent)
    , mId(id)
{
    setClass(classId);
}

PingFolderItem::PingFolderItem(const PingFolderItem &other)
    : AsProtocolItem(nullptr)
    , mId(other.mId)
    , mClass(other.mClass)
{
}

PingFolderItem &PingFolderItem::operator=(const PingFolderItem &other)
{
    mId = other.mId;
    mClass = other.mClass;
    return *this;
}

void PingFolderItem::setClass(ClassId classId)
{
    mClass = classNames[classId];
}

void PingFolderItem::encode(WbxmlEncoder &encoder) const
{
    encoder.appendElement(Ping::Folder, true);
    encoder.appendTextElement(Ping::Id, mId);
    encoder.appendTextElement(Ping::Class, mClass);
    encoder.setCurrentNodeToParent();
}
