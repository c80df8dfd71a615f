#include "Tools/ParameterProvider.h"

#include "Tools/ParameterContainer.h"
#include "Tools/ProcessorBase.h"

ClParameterProvider::~ClParameterProvider() = default;

void ClParameterProvider::QueryParameters(ClParameterInterface&) {}

void ClParameterProvider::SetParametersToDefault() {}

void ClParameterProvider::PublishParameters(ClParameterContainer&) {}

void ClParameterProvider::QueryParameters(ClParameterContainer& Container) {
    const unsigned long nBefore = Container.Entries();
    try {
        PublishParameters(Container);
        CaptureDefaults(Container);
    } catch (...) {
        Container.ForgetKept();
        Container.DeleteFrom(nBefore);
        throw;
    }
    Container.ForgetKept();
}

/// The settings move into the default slots while SetParametersToDefault() fills the members,
/// and the two change places again.
void ClParameterProvider::CaptureDefaults(ClParameterContainer& Container) {
    Container.SwapDefaultAndValue();
    try {
        SetParametersToDefault();
    } catch (...) {
        Container.SwapDefaultAndValue();
        Container.RestoreKept();
        throw;
    }
    Container.SwapDefaultAndValue();
    Container.RestoreKept();
}

namespace {

/// Processors may override the query, which is not virtual below them.
void Query(ClParameterProvider& Provider, ClParameterContainer& Container) {
    if (auto* pProcessor = dynamic_cast<ClProcessorBase*>(&Provider))
        pProcessor->QueryParameters(Container);
    else
        Provider.QueryParameters(Container);
}

} // namespace

void ClParameterProvider::CopyParametersTo(ClParameterProvider& Target) {
    ClParameterContainer own;
    ClParameterContainer targets;
    Query(*this, own);
    Query(Target, targets);
    targets.CopyValuesFrom(&own, false);
}

void ClParameterProvider::PublishParamSubContainer(ClParameterContainer& Container,
                                                   const char* pName) {
    PublishParameters(pName != nullptr ? *Container.AddContainer(pName) : Container);
}
