// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easbodycontainer.h"
#include "easitems/easgeneralitem.h"

#include <QMetaType>
#include <QStringList>
#include <QUrl>

/** One contact, with the texts as the server sends them; the picture is Base64 text. A plain value. */
class EasContactsItem : public EasGeneralItem
{
    Q_GADGET

public:
    EasBodyContainer body() const { return mBody; }
    void setBody(const EasBodyContainer &body) { mBody = body; }
    int nativeBodyType() const { return mNativeBodyType; }
    void setNativeBodyType(int nativeBodyType) { mNativeBodyType = nativeBodyType; }
    QStringList categories() const { return mCategories; }
    void setCategories(const QStringList &categories) { mCategories = categories; }
    QStringList children() const { return mChildren; }
    void setChildren(const QStringList &children) { mChildren = children; }
    int weightedRank() const { return mWeightedRank; }
    void setWeightedRank(int weightedRank) { mWeightedRank = weightedRank; }
    QString anniversary() const { return mAnniversary; }
    void setAnniversary(const QString &anniversary) { mAnniversary = anniversary; }
    QString assistantName() const { return mAssistantName; }
    void setAssistantName(const QString &assistantName) { mAssistantName = assistantName; }
    QString assistantPhoneNumber() const { return mAssistantPhoneNumber; }
    void setAssistantPhoneNumber(const QString &assistantPhoneNumber)
    {
        mAssistantPhoneNumber = assistantPhoneNumber;
    }
    QString birthday() const { return mBirthday; }
    void setBirthday(const QString &birthday) { mBirthday = birthday; }
    QString business2PhoneNumber() const { return mBusiness2PhoneNumber; }
    void setBusiness2PhoneNumber(const QString &business2PhoneNumber)
    {
        mBusiness2PhoneNumber = business2PhoneNumber;
    }
    QString businessAddressCity() const { return mBusinessAddressCity; }
    void setBusinessAddressCity(const QString &businessAddressCity)
    {
        mBusinessAddressCity = businessAddressCity;
    }
    QString businessPhoneNumber() const { return mBusinessPhoneNumber; }
    void setBusinessPhoneNumber(const QString &businessPhoneNumber)
    {
        mBusinessPhoneNumber = businessPhoneNumber;
    }
    QString webPage() const { return mWebPage; }
    void setWebPage(const QString &webPage) { mWebPage = webPage; }
    QString businessAddressCountry() const { return mBusinessAddressCountry; }
    void setBusinessAddressCountry(const QString &businessAddressCountry)
    {
        mBusinessAddressCountry = businessAddressCountry;
    }
    QString department() const { return mDepartment; }
    void setDepartment(const QString &department) { mDepartment = department; }
    QString email1Address() const { return mEmail1Address; }
    void setEmail1Address(const QString &email1Address) { mEmail1Address = email1Address; }
    QString email2Address() const { return mEmail2Address; }
    void setEmail2Address(const QString &email2Address) { mEmail2Address = email2Address; }
    QString email3Address() const { return mEmail3Address; }
    void setEmail3Address(const QString &email3Address) { mEmail3Address = email3Address; }
    QString businessFaxNumber() const { return mBusinessFaxNumber; }
    void setBusinessFaxNumber(const QString &businessFaxNumber) { mBusinessFaxNumber = businessFaxNumber; }
    QString fileAs() const { return mFileAs; }
    void setFileAs(const QString &fileAs) { mFileAs = fileAs; }
    QString alias() const { return mAlias; }
    void setAlias(const QString &alias) { mAlias = alias; }
    QString firstName() const { return mFirstName; }
    void setFirstName(const QString &firstName) { mFirstName = firstName; }
    QString middleName() const { return mMiddleName; }
    void setMiddleName(const QString &middleName) { mMiddleName = middleName; }
    QString homeAddressCity() const { return mHomeAddressCity; }
    void setHomeAddressCity(const QString &homeAddressCity) { mHomeAddressCity = homeAddressCity; }
    QString homeAddressCountry() const { return mHomeAddressCountry; }
    void setHomeAddressCountry(const QString &homeAddressCountry)
    {
        mHomeAddressCountry = homeAddressCountry;
    }
    QString homeFaxNumber() const { return mHomeFaxNumber; }
    void setHomeFaxNumber(const QString &homeFaxNumber) { mHomeFaxNumber = homeFaxNumber; }
    QString homePhoneNumber() const { return mHomePhoneNumber; }
    void setHomePhoneNumber(const QString &homePhoneNumber) { mHomePhoneNumber = homePhoneNumber; }
    QString home2PhoneNumber() const { return mHome2PhoneNumber; }
    void setHome2PhoneNumber(const QString &home2PhoneNumber) { mHome2PhoneNumber = home2PhoneNumber; }
    QString homeAddressPostalCode() const { return mHomeAddressPostalCode; }
    void setHomeAddressPostalCode(const QString &homeAddressPostalCode)
    {
        mHomeAddressPostalCode = homeAddressPostalCode;
    }
    QString homeAddressState() const { return mHomeAddressState; }
    void setHomeAddressState(const QString &homeAddressState) { mHomeAddressState = homeAddressState; }
    QString homeAddressStreet() const { return mHomeAddressStreet; }
    void setHomeAddressStreet(const QString &homeAddressStreet) { mHomeAddressStreet = homeAddressStreet; }
    QString mobilePhoneNumber() const { return mMobilePhoneNumber; }
    void setMobilePhoneNumber(const QString &mobilePhoneNumber) { mMobilePhoneNumber = mobilePhoneNumber; }
    QString suffix() const { return mSuffix; }
    void setSuffix(const QString &suffix) { mSuffix = suffix; }
    QString companyName() const { return mCompanyName; }
    void setCompanyName(const QString &companyName) { mCompanyName = companyName; }
    QString otherAddressCity() const { return mOtherAddressCity; }
    void setOtherAddressCity(const QString &otherAddressCity) { mOtherAddressCity = otherAddressCity; }
    QString otherAddressCountry() const { return mOtherAddressCountry; }
    void setOtherAddressCountry(const QString &otherAddressCountry)
    {
        mOtherAddressCountry = otherAddressCountry;
    }
    QString carPhoneNumber() const { return mCarPhoneNumber; }
    void setCarPhoneNumber(const QString &carPhoneNumber) { mCarPhoneNumber = carPhoneNumber; }
    QString otherAddressPostalCode() const { return mOtherAddressPostalCode; }
    void setOtherAddressPostalCode(const QString &otherAddressPostalCode)
    {
        mOtherAddressPostalCode = otherAddressPostalCode;
    }
    QString otherAddressState() const { return mOtherAddressState; }
    void setOtherAddressState(const QString &otherAddressState) { mOtherAddressState = otherAddressState; }
    QString otherAddressStreet() const { return mOtherAddressStreet; }
    void setOtherAddressStreet(const QString &otherAddressStreet)
    {
        mOtherAddressStreet = otherAddressStreet;
    }
    QString pagerNumber() const { return mPagerNumber; }
    void setPagerNumber(const QString &pagerNumber) { mPagerNumber = pagerNumber; }
    QString title() const { return mTitle; }
    void setTitle(const QString &title) { mTitle = title; }
    QString businessAddressPostalCode() const { return mBusinessAddressPostalCode; }
    void setBusinessAddressPostalCode(const QString &businessAddressPostalCode)
    {
        mBusinessAddressPostalCode = businessAddressPostalCode;
    }
    QString lastName() const { return mLastName; }
    void setLastName(const QString &lastName) { mLastName = lastName; }
    QString spouse() const { return mSpouse; }
    void setSpouse(const QString &spouse) { mSpouse = spouse; }
    QString businessAddressState() const { return mBusinessAddressState; }
    void setBusinessAddressState(const QString &businessAddressState)
    {
        mBusinessAddressState = businessAddressState;
    }
    QString businessAddressStreet() const { return mBusinessAddressStreet; }
    void setBusinessAddressStreet(const QString &businessAddressStreet)
    {
        mBusinessAddressStreet = businessAddressStreet;
    }
    QString jobTitle() const { return mJobTitle; }
    void setJobTitle(const QString &jobTitle) { mJobTitle = jobTitle; }
    QString yomiFirstName() const { return mYomiFirstName; }
    void setYomiFirstName(const QString &yomiFirstName) { mYomiFirstName = yomiFirstName; }
    QString yomiLastName() const { return mYomiLastName; }
    void setYomiLastName(const QString &yomiLastName) { mYomiLastName = yomiLastName; }
    QString yomiCompanyName() const { return mYomiCompanyName; }
    void setYomiCompanyName(const QString &yomiCompanyName) { mYomiCompanyName = yomiCompanyName; }
    QString officeLocation() const { return mOfficeLocation; }
    void setOfficeLocation(const QString &officeLocation) { mOfficeLocation = officeLocation; }
    QString radioPhoneNumber() const { return mRadioPhoneNumber; }
    void setRadioPhoneNumber(const QString &radioPhoneNumber) { mRadioPhoneNumber = radioPhoneNumber; }
    QString customerId() const { return mCustomerId; }
    void setCustomerId(const QString &customerId) { mCustomerId = customerId; }
    QString governmentId() const { return mGovernmentId; }
    void setGovernmentId(const QString &governmentId) { mGovernmentId = governmentId; }
    QString imAddress() const { return mImAddress; }
    void setImAddress(const QString &imAddress) { mImAddress = imAddress; }
    QString imAddress2() const { return mImAddress2; }
    void setImAddress2(const QString &imAddress2) { mImAddress2 = imAddress2; }
    QString imAddress3() const { return mImAddress3; }
    void setImAddress3(const QString &imAddress3) { mImAddress3 = imAddress3; }
    QString managerName() const { return mManagerName; }
    void setManagerName(const QString &managerName) { mManagerName = managerName; }
    QString companyMainPhone() const { return mCompanyMainPhone; }
    void setCompanyMainPhone(const QString &companyMainPhone) { mCompanyMainPhone = companyMainPhone; }
    QString accountName() const { return mAccountName; }
    void setAccountName(const QString &accountName) { mAccountName = accountName; }
    QString nickName() const { return mNickName; }
    void setNickName(const QString &nickName) { mNickName = nickName; }
    QString mms() const { return mMms; }
    void setMms(const QString &mms) { mMms = mms; }
    QString picture() const { return mPicture; }
    void setPicture(const QString &picture) { mPicture = picture; }
    QUrl avatarUrl() const { return mAvatarUrl; }
    void setAvatarUrl(const QUrl &avatarUrl) { mAvatarUrl = avatarUrl; }

    void addCategory(const QString &category) { mCategories.append(category); }

    void setBodyContainerType(EasBodyContainer::BodyType type) { mBody.setType(type); }
    void setBodyContainerData(const QString &data) { mBody.setData(data); }
    void setBodyContainerEstimatedDataSize(int size) { mBody.setEstimatedDataSize(size); }
    void setBodyContainerTruncated(bool truncated) { mBody.setTruncated(truncated); }
    void setBodyContainerPreview(const QString &preview) { mBody.setPreview(preview); }
    void setBodyContainerPart(int part) { mBody.setPart(part); }
    void clearBodyContainer() { mBody.clear(); }

    void clear() { *this = EasContactsItem(); }

private:
    EasBodyContainer mBody;
    int mNativeBodyType = -1;
    QStringList mCategories;
    QStringList mChildren;
    int mWeightedRank = 0;
    QString mAnniversary;
    QString mAssistantName;
    QString mAssistantPhoneNumber;
    QString mBirthday;
    QString mBusiness2PhoneNumber;
    QString mBusinessAddressCity;
    QString mBusinessPhoneNumber;
    QString mWebPage;
    QString mBusinessAddressCountry;
    QString mDepartment;
    QString mEmail1Address;
    QString mEmail2Address;
    QString mEmail3Address;
    QString mBusinessFaxNumber;
    QString mFileAs;
    QString mAlias;
    QString mFirstName;
    QString mMiddleName;
    QString mHomeAddressCity;
    QString mHomeAddressCountry;
    QString mHomeFaxNumber;
    QString mHomePhoneNumber;
    QString mHome2PhoneNumber;
    QString mHomeAddressPostalCode;
    QString mHomeAddressState;
    QString mHomeAddressStreet;
    QString mMobilePhoneNumber;
    QString mSuffix;
    QString mCompanyName;
    QString mOtherAddressCity;
    QString mOtherAddressCountry;
    QString mCarPhoneNumber;
    QString mOtherAddressPostalCode;
    QString mOtherAddressState;
    QString mOtherAddressStreet;
    QString mPagerNumber;
    QString mTitle;
    QString mBusinessAddressPostalCode;
    QString mLastName;
    QString mSpouse;
    QString mBusinessAddressState;
    QString mBusinessAddressStreet;
    QString mJobTitle;
    QString mYomiFirstName;
    QString mYomiLastName;
    QString mYomiCompanyName;
    QString mOfficeLocation;
    QString mRadioPhoneNumber;
    QString mCustomerId;
    QString mGovernmentId;
    QString mImAddress;
    QString mImAddress2;
    QString mImAddress3;
    QString mManagerName;
    QString mCompanyMainPhone;
    QString mAccountName;
    QString mNickName;
    QString mMms;
    QString mPicture;
    QUrl mAvatarUrl;
};
