<#
.SYNOPSIS
Makes the scheduled task that sends the drivers of this machine every day: register.ps1 -Url https://fleet.example:8443

.DESCRIPTION
Needs an administrator. The task runs ship.ps1, which lies beside this script, as SYSTEM, every day at two, or later when the machine was
off. Rests on the documentation of Windows PowerShell 5.1: no PowerShell was at hand.
#>
[CmdletBinding()]
param([Parameter(Mandatory)] [uri] $Url, [string] $Name = 'driverlist fleet')
$ErrorActionPreference = 'Stop'
$script = Join-Path $PSScriptRoot 'ship.ps1'
$action = New-ScheduledTaskAction -Execute powershell.exe `
  -Argument "-NoProfile -NonInteractive -ExecutionPolicy AllSigned -File `"$script`" -Url $($Url.AbsoluteUri)"
$trigger = New-ScheduledTaskTrigger -Daily -At 2am
$settings = New-ScheduledTaskSettingsSet -StartWhenAvailable -ExecutionTimeLimit (New-TimeSpan -Hours 4) -MultipleInstances IgnoreNew
Register-ScheduledTask -TaskName $Name -Action $action -Trigger $trigger -Settings $settings -User SYSTEM -RunLevel Highest -Force
