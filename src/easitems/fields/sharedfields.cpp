// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/sharedfields.h"

using namespace Wbxml;

namespace {

constexpr char NoUint[] = "Cannot convert to uint: ";
constexpr char NoInt[] = "Cannot convert to int: ";
constexpr char NoBool[] = "Cannot convert to bool: ";

} // namespace

namespace SharedFields {

FieldTable<EasBodyContainer> bodyFields(const BodyRefusals &refusals)
{
    using Body = EasBodyContainer;
    using Kind = Fields<Body>;
    return {
        Kind::unsignedNumber<&Body::type, &Body::setType>(AirSyncBase::Type, refusals.type),
        Kind::signedNumber<&Body::estimatedDataSize, &Body::setEstimatedDataSize, 0>(
            AirSyncBase::EstimatedDataSize, refusals.size),
        Kind::textAlways<&Body::data, &Body::setData>(AirSyncBase::Data),
        Kind::text<&Body::preview, &Body::setPreview>(AirSyncBase::Preview)
            .from(ExchangeActiveSync::ProtocolVersion140),
        Kind::flag<&Body::truncated, &Body::setTruncated>(AirSyncBase::Truncated, refusals.truncated)
            .receivedOnly(),
    };
}

const FieldTable<EasAttachmentContainer> &attachmentFields()
{
    using Attachment = EasAttachmentContainer;
    using Kind = Fields<Attachment>;
    static const FieldTable<Attachment> table {
        Kind::text<&Attachment::displayName, &Attachment::setDisplayName>(AirSyncBase::DisplayName),
        Kind::textAlways<&Attachment::fileReference, &Attachment::setFileReference>(
            AirSyncBase::FileReference),
        Kind::unsignedNumber<&Attachment::method, &Attachment::setMethod>(AirSyncBase::Method, NoUint),
        Kind::signedNumber<&Attachment::estimatedDataSize, &Attachment::setEstimatedDataSize>(
            AirSyncBase::EstimatedDataSize, NoInt),
        Kind::text<&Attachment::contentId, &Attachment::setContentId>(AirSyncBase::ContentId),
        Kind::text<&Attachment::contentLocation, &Attachment::setContentLocation>(
            AirSyncBase::ContentLocation),
        Kind::mark<&Attachment::isInline, &Attachment::setIsInline>(AirSyncBase::IsInline, NoBool),
        Kind::signedNumber<&Attachment::attachmentDuration, &Attachment::setAttachmentDuration, 0>(
            Email2::UmAttDuration, NoInt)
            .takenBy(Kind::discard),
        Kind::signedNumber<&Attachment::attachmentOrder, &Attachment::setAttachmentOrder, 0>(
            Email2::UmAttOrder, NoInt)
            .takenBy(Kind::discard),
    };
    return table;
}

bool bodyIsSent(const EasBodyContainer &body)
{
    return body.type() != EasBodyContainer::UnspecifiedBodyType;
}

} // namespace SharedFields
