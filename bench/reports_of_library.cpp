#include "reports.h"

const decltype(all_reports)& reports()
{
    return all_reports;
}
