#include "include/platform/Exception.h"
#include "tests/faults/Faults.h"

#include <exception>

std::string faults::Try(const Work& work, const Place& place)
{
    try {
        return work.run(place) ? "" : "-";
    } catch (CMemoryException* exception) {
        Disarm();
        exception->Delete();
        return "!";
    } catch (const std::exception& exception) {
        Disarm();
        return std::string("lets through ") + exception.what();
    } catch (CException* exception) {
        Disarm();
        exception->Delete();
        return "lets another exception through";
    } catch (...) {
        Disarm();
        return "lets something through";
    }
}
