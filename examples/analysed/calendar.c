/* Days and months. The defects are on purpose. */

static int const days[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/* Defect: months count from 1 here, so December reads after the end of the array. */
int days_of_december(void)
{
    int const december = 12;
    return days[december];
}

static int is_leap(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

/* Defect: a caller that needs no day of the month passes a null pointer, which is only checked
   for in January. */
int month_of(int day_of_year, int year, int *day_of_month)
{
    int month = 0;
    while (month < 11) {
        int length = days[month] + (month == 1 && is_leap(year));
        if (day_of_year <= length)
            break;
        day_of_year -= length;
        ++month;
    }
    if (day_of_month == 0 && month == 0)
        return 0;
    *day_of_month = day_of_year;
    return month;
}

/* Defect: shifts by the width of an int. */
unsigned month_bit(int month)
{
    if (month < 0)
        month = 32;
    return 1u << month;
}
