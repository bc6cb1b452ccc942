#include "automation/Guard.h"

#include <new>
#include <oleauto.h>
#include <string>

#include <kqappsession/Error.h>

#include "automation/Convert.h"

namespace kq::automation {
namespace {

constexpr int kLargestRunTimeError = 0xFFFF;

// An empty description would hide the one that the host's run time knows for the code: none is set then.
HRESULT Report(HRESULT code, REFIID iid, std::string_view source, std::string_view description) {
    Ptr<ICreateErrorInfo> info;
    if (FAILED(CreateErrorInfo(info.Out()))) return code;
    info->SetGUID(iid);
    info->SetSource(WideOf(source).data());
    if (!description.empty()) info->SetDescription(WideOf(description).data());
    SetErrorInfo(0, info.As<IErrorInfo>().Get());
    return code;
}

HRESULT ReportFailure(const Failure& failure, REFIID iid) {
    if (!failure.Info()) return Report(failure.Code(), iid, kLibrarySource, {});
    SetErrorInfo(0, failure.Info().Get());
    return failure.Code();
}

}  // namespace

Failure::Failure(HRESULT code) : code_(code) {
    GetErrorInfo(0, info_.Out());
}

HRESULT ResultOf(int error_number) noexcept {
    if (error_number < 0) return error_number;
    if (error_number > 0 && error_number <= kLargestRunTimeError) {
        return static_cast<HRESULT>(0x800A0000U | static_cast<unsigned>(error_number));
    }
    return E_FAIL;
}

void ForgetError() noexcept {
    SetErrorInfo(0, nullptr);
}

HRESULT ReportException(REFIID iid) noexcept {
    try {
        try {
            throw;
        } catch (const Error& error) {
            return Report(ResultOf(error.Number()), iid, error.Source(), error.Description());
        } catch (const Failure& failure) {
            return ReportFailure(failure, iid);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (const std::exception& exception) {
            return Report(E_FAIL, iid, kLibrarySource, exception.what());
        }
    } catch (...) {  // also when there is no memory for the description
        return E_UNEXPECTED;
    }
}

}  // namespace kq::automation
