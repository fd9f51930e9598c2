#pragma once

#include <QAbstractItemModel>

#include "tests/fancontrol/enginemachine.h"

// Once, before the first table or model.
inline void prepareTablesProcess()
{
    EngineMachine::prepareProcess();
    // What the signals of models carry.
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
    qRegisterMetaType<Qt::Orientation>();
}
