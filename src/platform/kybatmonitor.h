#ifndef KYBATMONITOR_H
#define KYBATMONITOR_H

/** The last measurement of the charge meter. */
struct cmeter_data {
    /**
     * 0 when charging has ended. Meaningful only if the charger is present and @ref charge is not
     * negative.
     */
    unsigned char flag;
    /** Charge in percent; negative while the battery is being charged. */
    int charge;
    /** Battery voltage, in the charge meter's unit. */
    unsigned short voltage;
};

/** Battery charge meter; implemented in libKyBoard.so.1. */
class KyBatmonitor
{
public:
    KyBatmonitor();
    virtual ~KyBatmonitor();
    KyBatmonitor(const KyBatmonitor &) = delete;
    KyBatmonitor &operator=(const KyBatmonitor &) = delete;

    /** Reports to the monitor whether the charger is connected; 0 on success. */
    int update(bool chargerPresent);

    /** Returns the type of the charge meter; types 1 and 2 report a signed percentage. */
    int getCmeterType();

    /** Fills @p data with the last measurement; 0 on success. */
    int getBatteryInfo(cmeter_data *data);

    /** Prepares the charge meter for power off; 0 on success. */
    int prepareForShutdown();

private:
    void *m_handle;
};

#endif
