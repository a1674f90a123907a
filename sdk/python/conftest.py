pytest_plugins = ["palsim_pytest"]
