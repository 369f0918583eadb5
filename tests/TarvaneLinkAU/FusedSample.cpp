// What a compiler makes of a product and a sum when it is not told to round them one by one.

double ProductAndSum(double dFactor, double dOther, double dSummand);

double ProductAndSum(double dFactor, double dOther, double dSummand)
{
    return dFactor * dOther + dSummand;
}
