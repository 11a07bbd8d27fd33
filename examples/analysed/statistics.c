/* Figures about a series of measurements. The defects are on purpose. */

#include <stddef.h>

/* Defect: a series without a positive value has a count of zero. */
int mean_of_positive(int const *values, size_t size)
{
    int sum = 0;
    int count = 0;
    for (size_t i = 0; i < size; ++i) {
        if (values[i] > 0) {
            sum += values[i];
            ++count;
        }
    }
    return sum / count;
}

/* Defect: the result for an empty series is uninitialised. */
int greatest(int const *values, size_t size)
{
    int best;
    for (size_t i = 0; i < size; ++i) {
        if (i == 0 || values[i] > best)
            best = values[i];
    }
    return best;
}

/* Defect: the first result is never used. */
int spread(int const *values, size_t size)
{
    int least = greatest(values, size);
    int most = values[0];
    least = values[0];
    for (size_t i = 1; i < size; ++i) {
        if (values[i] < least)
            least = values[i];
        if (values[i] > most)
            most = values[i];
    }
    return most - least;
}
