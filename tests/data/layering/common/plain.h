#pragma once

#include <QString>
