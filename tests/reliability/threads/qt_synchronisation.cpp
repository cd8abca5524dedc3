#include <QCoreApplication>
#include <QMutex>
#include <QThread>
#include <QVariant>

#include <private/qobject_p.h>

#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <sched.h>

// Preloaded by scripts/threads: tells the thread sanitizer what Qt, which is not built with it,
// synchronises. Only what happens is told:
//
// - a queued signal: all that went before the end of its emission happened before its delivery;
// - QThread::wait(): so has all that the thread did until the end of its signal finished();
// - QMetaObject::invokeMethod() with a function, waited for or not;
// - a QMutex that is unlocked and locked again, by QMutexLocker or by itself.
//
// And what Qt does to variants and texts that the project's code has it copy, assign and destroy:
// the sanitizer would not see that they are used at all.
//
// Nothing in here may use a lock that the sanitizer knows: it would put all threads in an order,
// and hide every race.

extern "C" {
void __tsan_acquire(void* address) __attribute__((weak));                         // NOLINT
void __tsan_release(void* address) __attribute__((weak));                         // NOLINT
void __tsan_read_range(void* address, unsigned long size) __attribute__((weak));  // NOLINT
void __tsan_write_range(void* address, unsigned long size) __attribute__((weak)); // NOLINT
}

namespace {

const quint64 event_patience = 100000; // looks

/// The place of an object's invoked functions among its signals.
const int invocation = -1;

/// What the sanitizer is told of one signal of one object.
struct Signal
{
    std::atomic<int> emissions{0}; ///< Those that have not ended.
    char edge = 0;
};

const std::size_t signal_count = 16384;
Signal signals_[signal_count];

void acquire(void* address)
{
    if (__tsan_acquire)
        __tsan_acquire(address);
}

void release(void* address)
{
    if (__tsan_release)
        __tsan_release(address);
}

/// Two that share a place are taken for one; there are many more places than signals.
Signal& signalOf(const QObject* sender, int number)
{
    const quint64 mixed =
        (quint64(quintptr(sender)) / 16 * 64 + quint64(number)) * Q_UINT64_C(0x9E3779B97F4A7C15);
    return signals_[std::size_t(mixed >> 40) % signal_count];
}

/// Qt's own objects wait for each other inside of emissions; those of the project never do.
bool isOfProject(const QObject* object)
{
    return object->metaObject()->className()[0] != 'Q';
}

void beginSignal(QObject* sender, int number, void**)
{
    if (isOfProject(sender))
        ++signalOf(sender, number).emissions;
}

void endSignal(QObject* sender, int number)
{
    Signal& signal = signalOf(sender, number);
    release(&signal.edge);
    if (isOfProject(sender))
        --signal.emissions;
    if (qobject_cast<QThread*>(sender))
        release(sender);
}

/// Before an event is delivered. An event may come before its emission has ended; the slot then
/// waits, so that the sender's copy of the arguments has been told.
bool beginEvent(void** data)
{
    QEvent* const event = static_cast<QEvent*>(data[1]);
    if (event->type() != QEvent::MetaCall)
        return false;
    const auto* const call = static_cast<QAbstractMetaCallEvent*>(event);
    if (!call->sender()) {
        acquire(&signalOf(static_cast<QObject*>(data[0]), invocation).edge);
        return false;
    }
    Signal& signal = signalOf(call->sender(), call->signalId());
    for (quint64 look = 0; signal.emissions > 0 && look < event_patience; ++look)
        sched_yield();
    acquire(&signal.edge);
    return false;
}

/// Qt's own function of that name.
template <typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

namespace {

QSignalSpyCallbackSet callbacks = {beginSignal, nullptr, endSignal, nullptr};

__attribute__((constructor)) void start()
{
    real<void(QSignalSpyCallbackSet*)>(
        "_Z32qt_register_signal_spy_callbacksP21QSignalSpyCallbackSet")(&callbacks);
    QInternal::registerCallback(QInternal::EventNotifyCallback, beginEvent);
}

/// A function that is invoked, and what there is to say when it has ended.
class Invoked : public QtPrivate::QSlotObjectBase
{
public:
    Invoked(QtPrivate::QSlotObjectBase* function, Signal* signal)
        : QSlotObjectBase(run),
          function_(function),
          signal_(signal)
    {}

private:
    static void run(int which, QSlotObjectBase* self, QObject* object, void** values, bool*)
    {
        auto* const invoked = static_cast<Invoked*>(self);
        if (which == Call) {
            invoked->function_->call(object, values);
            release(&invoked->signal_->edge);
        } else if (which == Destroy) {
            acquire(&invoked->signal_->edge); // the last one to let go counts, not the caller
            invoked->function_->destroyIfLastRef();
            delete invoked;
        }
    }

    QtPrivate::QSlotObjectBase* function_;
    Signal* signal_;
};

} // namespace

/// Qt Test would take the places of these.
void qt_register_signal_spy_callbacks(QSignalSpyCallbackSet*) {}

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot,
                                   Qt::ConnectionType type, void* result)
{
    static auto* const qt =
        real<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
            "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt"
            "14ConnectionTypeEPv");
    Signal& signal = signalOf(object, invocation);
    release(&signal.edge);
    const bool is_invoked = qt(object, new Invoked(slot, &signal), type, result);
    if (type == Qt::BlockingQueuedConnection)
        acquire(&signal.edge);
    return is_invoked;
}

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static auto* const qt = real<void(QMutex*)>("_ZN6QMutex4lockEv");
    qt(this);
    acquire(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static auto* const qt = real<bool(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    const bool is_locked = qt(this, timeout);
    if (is_locked)
        acquire(this);
    return is_locked;
}

void QMutex::unlock() noexcept
{
    static auto* const qt = real<void(QMutex*)>("_ZN6QMutex6unlockEv");
    release(this);
    qt(this);
}

bool QThread::wait(QDeadlineTimer deadline)
{
    static auto* const qt =
        real<bool(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool has_ended = qt(this, deadline);
    if (has_ended)
        acquire(this);
    return has_ended;
}

// Qt's functions by their names in the library: members cannot be defined anew by their names here,
// where Qt's headers declare some of them inline.

/// Whether the code at \a address is the project's: what the system has installed is not.
bool isCodeOfProject(const void* address)
{
    // A place for every page of code; what it holds is the page and the verdict in its lowest bit.
    static std::atomic<quintptr> verdicts[4096];
    const quintptr page = quintptr(address) >> 12;
    std::atomic<quintptr>& verdict = verdicts[page % 4096];
    const quintptr known = verdict.load(std::memory_order_relaxed);
    if (known >> 1 == page)
        return known & 1;
    Dl_info module;
    const bool is_known = dladdr(address, &module) != 0 && module.dli_fname;
    const bool is_ours = is_known && std::strncmp(module.dli_fname, "/lib", 4) != 0 &&
                         std::strncmp(module.dli_fname, "/usr/lib", 8) != 0;
    verdict.store(page << 1 | quintptr(is_ours), std::memory_order_relaxed);
    return is_ours;
}

template <typename T>
void reads(const T* object, const void* caller)
{
    if (__tsan_read_range && isCodeOfProject(caller))
        __tsan_read_range(const_cast<T*>(object), sizeof(T));
}

template <typename T>
void writes(T* object, const void* caller)
{
    if (__tsan_write_range && isCodeOfProject(caller))
        __tsan_write_range(object, sizeof(T));
}

#define COPIES(type, function, name)                                                               \
    void function(type* target, const type* source) __asm__(name);                                 \
    void function(type* target, const type* source)                                                \
    {                                                                                              \
        static auto* const qt = real<void(type*, const type*)>(name);                              \
        reads(source, __builtin_return_address(0));                                                \
        writes(target, __builtin_return_address(0));                                               \
        qt(target, source);                                                                        \
    }

#define ASSIGNS(type, function, name)                                                              \
    type* function(type* target, const type* source) __asm__(name);                                \
    type* function(type* target, const type* source)                                               \
    {                                                                                              \
        static auto* const qt = real<type*(type*, const type*)>(name);                             \
        reads(source, __builtin_return_address(0));                                                \
        writes(target, __builtin_return_address(0));                                               \
        return qt(target, source);                                                                 \
    }

#define DESTROYS(type, function, name)                                                             \
    void function(type* object) __asm__(name);                                                     \
    void function(type* object)                                                                    \
    {                                                                                              \
        static auto* const qt = real<void(type*)>(name);                                           \
        writes(object, __builtin_return_address(0));                                               \
        qt(object);                                                                                \
    }

COPIES(QVariant, copyVariant, "_ZN8QVariantC1ERKS_")
ASSIGNS(QVariant, assignVariant, "_ZN8QVariantaSERKS_")
DESTROYS(QVariant, destroyVariant, "_ZN8QVariantD1Ev")
ASSIGNS(QString, assignText, "_ZN7QStringaSERKS_")
ASSIGNS(QByteArray, assignBytes, "_ZN10QByteArrayaSERKS_")
