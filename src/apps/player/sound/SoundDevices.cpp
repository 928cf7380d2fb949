#include "apps/player/sound/SoundDevices.h"

#include "apps/player/sound/CommandThread.h"
#include "apps/player/sound/Mailbox.h"
#include "host/GStreamer.h"

#include <QTimer>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace pxvis::player {

using namespace host;

namespace {

// GStreamer tells of devices that come and go, but neither of another default nor of a server that
// ends. Asking anew takes 2 ms and is right in any case.
constexpr int AskInterval = 2500; // ms
constexpr int EndPatienceMs = 2000;
constexpr int MostDevices = 256;

template <typename T>
GstHolder<T> Held(T* object)
{
    return GstHolder<T>(object);
}

// A provider that finds no server complains on standard error.
bool AnswersServer()
{
    GstElement* made = gst_element_factory_make("pulsesrc", nullptr);
    if (!made)
        return false;
    const GstHolder<GstElement> source(GST_ELEMENT(gst_object_ref_sink(made)));
    g_object_set(made, "client-name", "pxvis", nullptr);
    const bool answers = gst_element_set_state(made, GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS;
    gst_element_set_state(made, GST_STATE_NULL);
    return answers;
}

SoundDevice Describe(GstDevice* device)
{
    SoundDevice described;
    char* id = nullptr;
    g_object_get(device, "internal-name", &id, nullptr);
    const auto idHolder = Held(id);
    const auto name = Held(gst_device_get_display_name(device));
    described.id = QString::fromUtf8(id);
    described.name = QString::fromStdString(OneLine(name.get()));
    described.isOutput = gst_device_has_classes(device, "Audio/Sink");
    if (GstStructure* properties = gst_device_get_properties(device)) {
        gboolean isDefault = FALSE;
        gst_structure_get_boolean(properties, "is-default", &isDefault);
        described.isDefault = described.isOutput && isDefault;
        described.isMonitor
            = g_strcmp0(gst_structure_get_string(properties, "device.class"), "monitor") == 0;
        gst_structure_free(properties);
    }
    return described;
}

QList<SoundDevice> AskServer()
{
    QList<SoundDevice> devices;
    std::string error;
    if (!InitializeGStreamer(error) || !AnswersServer())
        return devices;
    GstDeviceProvider* provider = gst_device_provider_factory_get_by_name("pulsedeviceprovider");
    if (!provider)
        return devices;
    if (gst_device_provider_start(provider)) {
        GList* found = gst_device_provider_get_devices(provider);
        for (GList* item = found; item && devices.size() < MostDevices; item = item->next)
            devices.append(Describe(static_cast<GstDevice*>(item->data)));
        g_list_free_full(found, gst_object_unref);
        gst_device_provider_stop(provider);
    }
    gst_object_unref(provider);
    std::sort(devices.begin(), devices.end(), [](const SoundDevice& a, const SoundDevice& b) {
        return std::tuple(!a.isMonitor, a.name, a.id) < std::tuple(!b.isMonitor, b.name, b.id);
    });
    return devices;
}

}

struct SoundDevices::Watch
{
    explicit Watch(SoundDevices& owner);
    ~Watch();

    void Ask();
    void Take(const QList<SoundDevice>& told);

    SoundDevices& owner;
    QList<SoundDevice> devices;
    QTimer timer;
    const std::shared_ptr<Mailbox> mailbox = std::make_shared<Mailbox>();
    CommandThread thread;
};

SoundDevices::Watch::Watch(SoundDevices& owner)
    : owner(owner)
{
    timer.setSingleShot(true);
    timer.setInterval(AskInterval);
    QObject::connect(&timer, &QTimer::timeout, [this] { Ask(); });
    Ask();
}

SoundDevices::Watch::~Watch()
{
    mailbox->Close();
    thread.Finish();
    thread.WaitForEnd(EndPatienceMs);
}

void SoundDevices::Watch::Ask()
{
    thread.Post([this, box = mailbox] { box->Post([this, told = AskServer()] { Take(told); }); });
}

void SoundDevices::Watch::Take(const QList<SoundDevice>& told)
{
    timer.start();
    if (std::exchange(devices, told) != told)
        emit owner.Changed();
}

SoundDevices::SoundDevices()
    : m_watch(std::make_unique<Watch>(*this))
{
}

SoundDevices::~SoundDevices() = default;

QList<SoundDevice> SoundDevices::Outputs() const
{
    QList<SoundDevice> outputs;
    std::copy_if(m_watch->devices.begin(), m_watch->devices.end(), std::back_inserter(outputs),
        [](const SoundDevice& device) { return device.isOutput; });
    return outputs;
}

QList<SoundDevice> SoundDevices::Inputs() const
{
    QList<SoundDevice> inputs;
    std::copy_if(m_watch->devices.begin(), m_watch->devices.end(), std::back_inserter(inputs),
        [](const SoundDevice& device) { return !device.isOutput; });
    return inputs;
}

QString SoundDevices::DefaultOutput() const
{
    for (const SoundDevice& device : m_watch->devices) {
        if (device.isDefault)
            return device.id;
    }
    return {};
}

}
