/* A library without a report. */
int empty_stats_present = 1;
