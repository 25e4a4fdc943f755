// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/serviceconnections.h"

#include "application/requestmanager.h"
#include "dbus/dbusinterfacethread.h"

namespace {

using Service = DBusInterfaceThread;
using Manager = RequestManager;

void connectCalls(const Service *service, Manager *manager)
{
    QObject::connect(service, &Service::requestedQuit, manager, &Manager::onQuitRequest);
    QObject::connect(service, &Service::requestedReconfig, manager, &Manager::onReconfigRequest);
    QObject::connect(service, &Service::requestedCancelRequest, manager, &Manager::onCancelRequest);
    QObject::connect(service, &Service::requestedSync, manager, &Manager::onFullSyncRequest);
    QObject::connect(service, &Service::requestedFoldersSync, manager, &Manager::onFoldersSyncRequest);
    QObject::connect(service, &Service::requestedSyncFolders, manager, &Manager::onSyncFoldersRequest);
    QObject::connect(service, &Service::requestedSyncService, manager, &Manager::onSyncServiceRequest);
    QObject::connect(service, &Service::requestedSendMail, manager, &Manager::onSendMailRequest);
    QObject::connect(
        service, &Service::requestedMeetingResponse, manager, &Manager::onMeetingResponseRequest);
    QObject::connect(service, &Service::requestedMeetingResponseCalendar, manager,
        &Manager::onMeetingResponseCalendarRequest);
    QObject::connect(service, &Service::requestedCreateFolder, manager, &Manager::onCreateFolderRequest);
    QObject::connect(service, &Service::requestedUpdateFolder, manager, &Manager::onUpdateFolderRequest);
    QObject::connect(service, &Service::requestedDownloadCalendarAttachment, manager,
        &Manager::onCalendarAttachmentDownloadRequest);
    QObject::connect(service, &Service::requestedDeleteFolder, manager, &Manager::onDeleteFolderRequest);
    QObject::connect(
        service, &Service::requestedProvisionPolicy, manager, &Manager::onProvisionPolicyRequest);
    QObject::connect(
        service, &Service::requestedDownloadMessagePart, manager, &Manager::onDownloadMessagePartRequest);
    QObject::connect(service, &Service::requestedSearchMessages, manager, &Manager::onSearchMessagesRequest);
    QObject::connect(service, &Service::requestedSearchGAL, manager, &Manager::onSearchGALRequest);
    QObject::connect(service, &Service::requestedFind, manager, &Manager::onFindRequest);
    QObject::connect(
        service, &Service::requestedDownloadMessages, manager, &Manager::onDownloadMessagesRequest);
    QObject::connect(service, &Service::requestedGetOofState, manager, &Manager::onGetOofRequest);
    QObject::connect(service, &Service::requestedSetOofState, manager, &Manager::onSetOofStateRequest);
    QObject::connect(
        service, &Service::requestedAttendeesAvailable, manager, &Manager::onAttendeesAvailableRequest);
    QObject::connect(service, &Service::alwaysOnStatus, manager, &Manager::onAlwaysOnStatus);
}

void connectReports(const Manager *manager, Service *service)
{
    QObject::connect(manager, &Manager::requestFinished, service, &Service::reportRequestFinished);
    QObject::connect(
        manager, &Manager::provisionRequestFinished, service, &Service::reportProvisionRequestFinished);
    QObject::connect(
        manager, &Manager::policyDocumentReceived, service, &Service::reportPolicyDocumentReceived);
    QObject::connect(
        manager, &Manager::searchMessagesFinished, service, &Service::reportSearchMessagesFinished);
    QObject::connect(manager, &Manager::searchGALFinished, service, &Service::reportSearchGALFinished);
    QObject::connect(manager, &Manager::findMessagesFinished, service, &Service::reportFindMessagesFinished);
    QObject::connect(manager, &Manager::galItemReceived, service, &Service::reportGalItemReceived);
    QObject::connect(manager, &Manager::requestProgress, service, &Service::reportRequestProgress);
    QObject::connect(manager, &Manager::syncStarted, service, &Service::reportSyncStarted);
    QObject::connect(manager, &Manager::syncCompleted, service, &Service::reportSyncCompleted);
    QObject::connect(manager, &Manager::pushStateChanged, service, &Service::reportPushState);
    QObject::connect(manager, &Manager::oofStateFetched, service, &Service::reportGetOofFinished);
    QObject::connect(
        manager, &Manager::attendeesAvailableDataReady, service, &Service::attendeesAvailableDataReady);
}

} // namespace

void ServiceConnections::make(RequestManager &manager, DBusInterfaceThread &service)
{
    connectCalls(&service, &manager);
    connectReports(&manager, &service);
}
