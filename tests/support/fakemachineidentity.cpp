#include "tests/support/fakemachineidentity.h"

FakeMachineIdentity::FakeMachineIdentity(const QString& model)
{
    management.manufacturer = QStringLiteral("Apple Inc.");
    management.model = model;
    cpu = Processor { QStringLiteral("Test CPU @ 2.30GHz"), std::nullopt };
}
