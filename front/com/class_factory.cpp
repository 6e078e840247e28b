#include "front/com/class_factory.h"

#include <atomic>

#include "automation/class_registry.h"
#include "front/include/vicenter/vicenter.h"
#include "front/library_session.h"
#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_pointer.h"
#include "platform/com/dispatch_object.h"

namespace vicenter::front {

using automation::Error;

namespace {

std::atomic<long> locks{0};

class ClassFactory final : public com::ComObject<IClassFactory> {
  public:
    explicit ClassFactory(const PublicClass& made) : class_(made) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** result) override {
        if (result == nullptr) return E_POINTER;
        *result = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return com::Guarded(nullptr, [&]() -> HRESULT {
            try {
                LibrarySession& session = LibrarySession::Enter();
                const LibrarySession::CallScope scope(session);
                const com::ComPointer<IDispatch> object(
                    com::NewDispatch(automation::CreateObject(class_.progId)));
                return object->QueryInterface(id, result);
            } catch (const Error& error) {
                if (error.Number() == VIC_ERROR_WRONG_THREAD) return RPC_E_WRONG_THREAD;
                throw;
            }
        });
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        locks += lock ? 1 : -1;
        return S_OK;
    }

  private:
    ~ClassFactory() override = default;

    const PublicClass& class_;
};

}  // namespace

HRESULT GetClassFactory(const PublicClass& made, REFIID id, void** result) {
    return com::Guarded(nullptr, [&] {
        const com::ComPointer<ClassFactory> factory(new ClassFactory(made));
        return factory->QueryInterface(id, result);
    });
}

long ServerLocks() {
    return locks;
}

}  // namespace vicenter::front
