// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/parttree.h"

#include "internal/mailvaluedata.h"

namespace {

typedef QMailMessagePartContainer Container;

bool isAttachment(const QMailMessagePart &part)
{
    if (part.multipartType() != Container::MultipartNone)
        return part.contentDisposition().type() == QMailMessageContentDisposition::Attachment;
    const QMailMessageContentType type = part.contentType();
    if (part.contentDisposition().type() == QMailMessageContentDisposition::Attachment
        || type.matches("message", "rfc822"))
        return true;
    return !type.content().isEmpty() && !type.matches("text", "plain") && !type.matches("text", "html")
        && !type.matches("text", "calendar");
}

/** Passed over in the search for a text in a mixed. */
bool hidesText(const QMailMessagePart &part)
{
    return part.referenceType() == QMailMessagePart::MessageReference
        || part.contentDisposition().type() == QMailMessageContentDisposition::Attachment;
}

/**
 * The search that the rules for texts share. matches(container) decides on single parts, and first on an
 * alternative, which so may be taken as a whole.
 */
template <typename F> Container *search(Container &container, F matches)
{
    const uint count = container.partCount();
    if (matches(container))
        return &container;
    Container *found = nullptr;
    switch (container.multipartType()) {
    case Container::MultipartNone:
    case Container::MultipartEncrypted:
        break;
    case Container::MultipartSigned:
        return count > 0 ? search(container.partAt(0), matches) : nullptr;
    case Container::MultipartAlternative:
        for (uint i = count; i > 0 && !found; --i)
            found = search(container.partAt(i - 1), matches);
        break;
    case Container::MultipartRelated:
        for (uint i = count; i > 0 && !found; --i) {
            QMailMessagePart &part = container.partAt(i - 1);
            if (!part.contentType().matches("image"))
                found = search(part, matches);
        }
        break;
    default:
        for (uint i = 0; i < count && !found; ++i) {
            QMailMessagePart &part = container.partAt(i);
            if (!hidesText(part))
                found = search(part, matches);
        }
        break;
    }
    return found;
}

void collectAttachments(const Container &container, QList<const QMailMessagePart *> &found)
{
    const Container::MultipartType type = container.multipartType();
    if (type == Container::MultipartNone || type == Container::MultipartRelated)
        return;
    for (uint i = 0; i < container.partCount(); ++i) {
        const QMailMessagePart &part = container.partAt(i);
        if (isAttachment(part))
            found.append(&part);
        else
            collectAttachments(part, found);
    }
}

bool isReadableText(const QMailMessagePart &part)
{
    const QMailMessageContentType type = part.contentType();
    return type.content().isEmpty() || type.matches("text", "plain") || type.matches("text", "html");
}

void collectInline(const Container &container, bool imagesOnly, QList<const QMailMessagePart *> &found)
{
    const bool related = container.multipartType() == Container::MultipartRelated;
    for (uint i = 0; i < container.partCount(); ++i) {
        const QMailMessagePart &part = container.partAt(i);
        if (part.multipartType() != Container::MultipartNone)
            collectInline(part, imagesOnly, found);
        else if (related && (imagesOnly ? part.contentType().matches("image") : !isReadableText(part)))
            found.append(&part);
    }
}

} // namespace

namespace PartTree {

QMailMessagePartContainer *findText(QMailMessagePartContainer &container, const QByteArray &subType)
{
    return search(container, [&](const Container &candidate) {
        return candidate.multipartType() == Container::MultipartNone
            && candidate.contentType().matches("text", subType);
    });
}

QMailMessagePartContainer *findBodyContainer(QMailMessagePartContainer &container)
{
    const auto isText = [](const Container &candidate) {
        return candidate.multipartType() == Container::MultipartNone
            && candidate.contentType().matches("text");
    };
    return search(container, [&](Container &candidate) {
        if (candidate.multipartType() != Container::MultipartAlternative)
            return isText(candidate);
        return search(candidate, isText) != nullptr;
    });
}

QList<const QMailMessagePart *> attachments(const QMailMessagePartContainer &container)
{
    QList<const QMailMessagePart *> found;
    collectAttachments(container, found);
    return found;
}

QList<const QMailMessagePart *> inlineImages(const QMailMessagePartContainer &container)
{
    QList<const QMailMessagePart *> found;
    collectInline(container, true, found);
    return found;
}

QList<const QMailMessagePart *> inlineParts(const QMailMessagePartContainer &container)
{
    QList<const QMailMessagePart *> found;
    collectInline(container, false, found);
    return found;
}

QList<QMailMessagePartContainer::Location> locations(const QList<const QMailMessagePart *> &parts)
{
    QList<QMailMessagePartContainer::Location> list;
    for (const QMailMessagePart *part : parts)
        list.append(part->location());
    return list;
}

const QMailMessagePart *partAt(
    const QMailMessagePartContainer &message, const QMailMessagePartContainer::Location &location)
{
    const QMailMessagePartContainer *container = &message;
    const QMailMessagePart *part = nullptr;
    for (const uint index : MailValueAccess::indices(location)) {
        if (index == 0 || index > container->partCount())
            return nullptr;
        part = &container->partAt(index - 1);
        container = part;
    }
    return part;
}

QMailMessagePart *partAt(
    QMailMessagePartContainer &message, const QMailMessagePartContainer::Location &location)
{
    QMailMessagePartContainer *container = &message;
    QMailMessagePart *part = nullptr;
    for (const uint index : MailValueAccess::indices(location)) {
        if (index == 0 || index > container->partCount())
            return nullptr;
        part = &container->partAt(index - 1);
        container = part;
    }
    return part;
}

void remove(QMailMessagePartContainer &container, const QList<const QMailMessagePart *> &parts)
{
    const QList<uint> base = MailValueAccess::node(container).indices;
    const QList<QMailMessagePartContainer::Location> places = locations(parts);
    // From the back, so that the places before stay what they are.
    for (int i = places.size() - 1; i >= 0; --i) {
        QList<uint> indices = MailValueAccess::indices(places.at(i)).mid(base.size());
        const uint last = indices.takeLast();
        if (indices.isEmpty())
            container.removePartAt(last - 1);
        else if (QMailMessagePart *parent = partAt(container, MailValueAccess::location({}, indices)))
            parent->removePartAt(last - 1);
    }
}

void wrap(QMailMessagePartContainer &container, QMailMessagePartContainer::MultipartType type)
{
    if (container.multipartType() == type)
        return;
    const QMailMessagePart content = MailValueAccess::edit(container).takeContent();
    container.setMultipartType(type);
    container.appendPart(content);
}

} // namespace PartTree
