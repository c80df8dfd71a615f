#pragma once

/// `ClParameterProvider`: an object that publishes its settings. A setting is stated once, in
/// code, by binding a parameter to the member that holds it; there is no table of settings.
///
/// Two channels stand side by side, and a class implements either or both: the flat list
/// `ClParameterInterface` and the tree `ClParameterContainer`. The tree knows defaults too. They
/// are captured from SetParametersToDefault(), so that no default is written twice.

class ClParameterContainer;
class ClParameterInterface;

class ClParameterProvider {
public:
    virtual ~ClParameterProvider();

    /// Flat channel: adds an entry per setting to `List`.
    virtual void QueryParameters(ClParameterInterface& List);
    /// Assigns its default to every member; constructors end by calling it.
    virtual void SetParametersToDefault();
    /// Tree channel: adds a parameter per setting to `Container`, bound to the member. Members
    /// that SetParametersToDefault() assigns and the tree does not publish are named to
    /// `ClParameterContainer::Keep`.
    virtual void PublishParameters(ClParameterContainer& Container);

    /// Fills a new container by PublishParameters() and gives each parameter its default. The
    /// members are afterwards as before. Where it throws, members and container are as before;
    /// a second call with the same container is such a case (-46).
    void QueryParameters(ClParameterContainer& Container);

    /// Copies the value of every parameter to `Target`, an object with the same parameters in the
    /// same order. Pointers, that is images and other objects not owned, are not copied.
    void CopyParametersTo(ClParameterProvider& Target);

    /// Publishes into a new sub-container `pName` of `Container`, or, for a null name, into
    /// `Container` itself: a composite processor nests the settings of its parts. Throws -46 for
    /// a name that `Container` already has.
    void PublishParamSubContainer(ClParameterContainer& Container, const char* pName);

private:
    void CaptureDefaults(ClParameterContainer& Container);
};
