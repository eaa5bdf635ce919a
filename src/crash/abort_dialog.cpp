#include "crash/abort_dialog.h"

#include "base/identity.h"
#include "base/shield.h"
#include "crash/user_texts.h"

#include <atomic>

namespace vxut {
namespace {

constinit std::atomic<bool> packsAlways{false};

constexpr scUserText kCaption = {L"Please wait...", L"Bitte warten Sie..."};
constexpr scUserText kText = {L"Compressing the support information file.",
                              L"Komprimierung der Support-Informations-Datei."};

} // namespace

void SetPackAlways(bool packAlways) { packsAlways = packAlways; }

// Runs a call of the library. Returns false once one has faulted.
template <class Call>
bool clsAbortDialog::Try(Call call) {
    if (!isDefective_) isDefective_ = !Shielded(call);
    return !isDefective_;
}

clsAbortDialog::clsAbortDialog() {
    Try([this] {
        if (library_.CtlJobOpenEx.IsAvailable()) job_ = library_.CtlJobOpenEx(Identity().library);
        if (library_.CtlAbortDlgStart.IsAvailable())
            dialog_ = library_.CtlAbortDlgStart(job_, kCaption.ForUser(), kText.ForUser());
    });
}

clsAbortDialog::~clsAbortDialog() {
    Try([this] {
        if (dialog_ && library_.CtlAbortDlgEnd.IsAvailable()) library_.CtlAbortDlgEnd(dialog_);
        if (job_ && library_.CtlJobCloseEx.IsAvailable()) library_.CtlJobCloseEx(job_);
    });
}

bool clsAbortDialog::MayGoOn() {
    int32_t answer = -1;
    Try([&] {
        if (library_.CtlAbortDlgCheckAbort.IsAvailable()) answer = library_.CtlAbortDlgCheckAbort(dialog_);
    });
    const bool isAsked = !isDefective_ && library_.CtlAbortDlgCheckAbort.IsAvailable();
    return isAsked ? answer >= 0 : packsAlways.load();
}

void clsAbortDialog::SetProgress(int32_t percent) {
    Try([&] {
        if (dialog_ && library_.CtlAbortDlgSetText.IsAvailable())
            library_.CtlAbortDlgSetText(dialog_, kText.ForUser(), percent);
    });
}

} // namespace vxut
