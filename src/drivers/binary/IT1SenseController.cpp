#include "drivers/binary/IT1SenseController.h"

#include "drivers/TableProof.h"
#include "drivers/binary/IT1Rows.h"

namespace {

using namespace sensorcontrol;

static_assert(isWellFormed(it1::Rows));

constexpr ModelDescription Description = it1::describe("IT1SenseController", it1::Rows);

} // namespace

IT1SenseController::IT1SenseController() : IBaseIT1SenseController(2, Description) {}

IT1SenseController::~IT1SenseController() { stopThreads(); }

const ModelDescription& IT1SenseController::model() { return Description; }
