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

clsVlmrCTL& Companion() {
    static clsVlmrCTL library;
    return library;
}

} // namespace

void PrepareAbortDialog() { Companion().ResolveAll(); }

void SetPackAlways(bool packAlways) { packsAlways = packAlways; }

// Runs a call of the library. Returns false once one has faulted.
template <class Call>
bool clsAbortDialog::Try(Call call) {
    if (!isDefective_) isDefective_ = !Shielded(call);
    return !isDefective_;
}

clsAbortDialog::clsAbortDialog() {
    PrepareAbortDialog();
    Try([this] {
        if (Companion().CtlJobOpenEx.IsAvailable()) job_ = Companion().CtlJobOpenEx(Identity().library);
        if (Companion().CtlAbortDlgStart.IsAvailable())
            dialog_ = Companion().CtlAbortDlgStart(job_, kCaption.ForUser(), kText.ForUser());
    });
}

clsAbortDialog::~clsAbortDialog() {
    Try([this] {
        if (dialog_ && Companion().CtlAbortDlgEnd.IsAvailable()) Companion().CtlAbortDlgEnd(dialog_);
        if (job_ && Companion().CtlJobCloseEx.IsAvailable()) Companion().CtlJobCloseEx(job_);
    });
}

bool clsAbortDialog::MayGoOn() {
    int32_t answer = -1;
    Try([&] {
        if (Companion().CtlAbortDlgCheckAbort.IsAvailable())
            answer = Companion().CtlAbortDlgCheckAbort(dialog_);
    });
    const bool isAsked = !isDefective_ && Companion().CtlAbortDlgCheckAbort.IsAvailable();
    return isAsked ? answer >= 0 : packsAlways.load();
}

void clsAbortDialog::SetProgress(int32_t percent) {
    Try([&] {
        if (dialog_ && Companion().CtlAbortDlgSetText.IsAvailable())
            Companion().CtlAbortDlgSetText(dialog_, kText.ForUser(), percent);
    });
}

} // namespace vxut
