#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QString>

namespace GPU {

class Provider;

// One GPU, as the provider that found it describes it.
struct Info {
    QString name; // as the driver gives it
    Provider* provider = nullptr; // made the record; not owned
    void* handle = nullptr; // the provider's own, opaque to everybody else
    bool noSmcMatch = false; // the controller's key is not about this GPU
};

// Finds GPUs and reads their temperatures. One caller at a time; the records are
// valid until clear().
class Provider : public QObject {
    Q_OBJECT

public:
    explicit Provider(QObject* parent = nullptr);
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;
    ~Provider() override;

    // Deletes the records.
    virtual void clear();
    [[nodiscard]] virtual int getCount() const;
    // Null for an index that there isn't.
    [[nodiscard]] virtual Info* getGpu(int index) const;
    // Fills the list; whether any GPU is known then.
    virtual bool discoverGPUs() = 0;
    // Degrees Celsius; 0 when the GPU can't be read.
    [[nodiscard]] virtual double getTemperature(const Info* gpu) = 0;

Q_SIGNALS:
    // A provider's means to ask for another discovery.
    void gpuListReloadRequired();

protected:
    void addGpu(const QString& name, void* handle);

private:
    std::vector<std::unique_ptr<Info>> m_gpus;
};

} // namespace GPU
