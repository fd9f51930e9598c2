#include "app/terminationsignals.h"

// Here a program is asked to end by a message to its window.
class TerminationSignals::Handler { };

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
    , m_handler(std::make_unique<Handler>())
{
}

TerminationSignals::~TerminationSignals() = default;
