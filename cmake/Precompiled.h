// The headers that nearly every source file reads; precompiled once for each module.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>
