// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/wbxmlnode.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace Simulator {

WbxmlNode::WbxmlNode(const QString &name, const QString &text)
    : mName(name)
    , mText(text)
{
}

WbxmlNode::WbxmlNode(const QString &name, const QVector<WbxmlNode> &children)
    : mName(name)
    , mChildren(children)
{
}

WbxmlNode WbxmlNode::opaque(const QString &name, const QByteArray &bytes)
{
    WbxmlNode node(name);
    node.mOpaque = bytes;
    node.mIsOpaque = true;
    return node;
}

QString WbxmlNode::page() const
{
    return mName.section(QLatin1Char(':'), 0, 0);
}

QString WbxmlNode::tag() const
{
    return mName.section(QLatin1Char(':'), 1);
}

QString WbxmlNode::text() const
{
    return mIsOpaque ? QString::fromUtf8(mOpaque) : mText;
}

void WbxmlNode::setText(const QString &text)
{
    mText = text;
    mOpaque.clear();
    mIsOpaque = false;
}

QByteArray WbxmlNode::bytes() const
{
    return mIsOpaque ? mOpaque : mText.toUtf8();
}

QString WbxmlNode::qualified(const QString &name) const
{
    return name.contains(QLatin1Char(':')) ? name : page() + QLatin1Char(':') + name;
}

WbxmlNode &WbxmlNode::append(const WbxmlNode &child)
{
    mChildren.append(child);
    mChildren.last().mName = qualified(child.mName);
    return mChildren.last();
}

WbxmlNode &WbxmlNode::append(const QString &name, const QString &text)
{
    return append(WbxmlNode(name, text));
}

WbxmlNode &WbxmlNode::append(const QString &name, int number)
{
    return append(name, QString::number(number));
}

QVector<WbxmlNode> WbxmlNode::all(const QString &path) const
{
    QVector<WbxmlNode> level { *this };
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &name : names) {
        QVector<WbxmlNode> next;
        for (const WbxmlNode &node : qAsConst(level)) {
            const QString wanted = node.qualified(name);
            std::copy_if(node.mChildren.begin(), node.mChildren.end(), std::back_inserter(next),
                [&wanted](const WbxmlNode &child) { return child.mName == wanted; });
        }
        level = next;
    }
    return level;
}

WbxmlNode WbxmlNode::at(const QString &path) const
{
    return all(path).value(0);
}

WbxmlNode *WbxmlNode::find(const QString &path)
{
    const QString wanted = qualified(path.section(QLatin1Char('/'), 0, 0));
    const QString rest = path.section(QLatin1Char('/'), 1);
    for (WbxmlNode &child : mChildren) {
        if (child.mName != wanted)
            continue;
        if (rest.isEmpty())
            return &child;
        if (WbxmlNode *found = child.find(rest))
            return found;
    }
    return nullptr;
}

void WbxmlNode::removeAll(const QString &name)
{
    const QString wanted = qualified(name);
    mChildren.erase(std::remove_if(mChildren.begin(), mChildren.end(),
                        [&wanted](const WbxmlNode &child) { return child.mName == wanted; }),
        mChildren.end());
}

bool WbxmlNode::operator==(const WbxmlNode &other) const
{
    // How the bytes travelled does not count, what they say does.
    return mName == other.mName && bytes() == other.bytes() && mChildren == other.mChildren;
}

} // namespace Simulator
