/* A library in which the name of a report is that of a datum. */
const int STATS_PrintForVFramer = 1;
